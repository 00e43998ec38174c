// Events and property changes: who hears what, in which order, whatever handlers do.

#include "PersistenceDoubles.h"
#include "PropertySink.h"
#include "TestControl.h"

using namespace corvina;
using namespace corvina::test;

namespace {

constexpr DISPID changed = 1;

class Events : public ControlBaseTest {
protected:
    void fire(std::int32_t value) { control->base().events().fire(changed, {value}); }
    ComPtr<IOleControl> oleControl() { return as<IOleControl>(); }
    ComPtr<IConnectionPointContainer> container() { return as<IConnectionPointContainer>(); }
    ComPtr<IConnectionPoint> point(REFIID iid = DIID___cAudioGraph) {
        ComPtr<IConnectionPoint> result;
        container()->FindConnectionPoint(iid, result.put());
        return result;
    }

    // Loads the control's state by a pointer that holds no reference, while a listener to its
    // properties releases the only one.
    template <typename Interface, typename Load>
    void loseWhileLoading(Load&& load) {
        Interface* const raw = as<Interface>().get();
        PropertySink sink;
        ASSERT_EQ(S_OK, sink.connect(point(IID_IPropertyNotifySink)));
        sink.handler = [&] {
            sink.disconnect();
            control.reset();
            EXPECT_EQ(1, TestControl::alive);
        };
        EXPECT_EQ(S_OK, load(*raw));
        EXPECT_EQ(std::vector<DISPID>{DISPID_UNKNOWN}, sink.received);
        EXPECT_EQ(0, TestControl::alive);
    }
};

// A listener that releases the control while it is being connected.
class LeavingSink final : public PropertySink {
public:
    explicit LeavingSink(ComPtr<TestControl>& control) : meter_(control) {}
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        meter_.reset();
        EXPECT_EQ(1, TestControl::alive);
        return PropertySink::QueryInterface(iid, result);
    }

private:
    ComPtr<TestControl>& meter_;
};

std::vector<long> numbers(const EventSink& sink) {
    std::vector<long> result;
    for (const auto& event : sink.received)
        result.push_back(V_I4(&event.arguments.at(0)));
    return result;
}

TEST_F(Events, reach_a_listener_with_their_arguments) {
    EventSink sink(DIID___cAudioGraph);
    ASSERT_EQ(S_OK, sink.connect(unknown(), DIID___cAudioGraph));
    fire(42);
    ASSERT_EQ(1u, sink.received.size());
    EXPECT_EQ(changed, sink.received[0].id);
    EXPECT_EQ(std::vector<long>{42}, numbers(sink));
}

TEST_F(Events, reach_a_listener_that_has_nothing_but_idispatch) {
    EventSink sink(IID_NULL);
    ASSERT_EQ(S_OK, sink.connect(unknown(), DIID___cAudioGraph));
    fire(1);
    EXPECT_EQ(1u, sink.received.size());
}

TEST_F(Events, arguments_come_in_the_order_of_the_declaration) {
    EventSink sink(DIID___cAudioGraph);
    sink.connect(unknown(), DIID___cAudioGraph);
    control->base().events().fire(
        2, {std::wstring(L"where"), EventSource::ByReference{5}, std::wstring(L"why\0not", 7)});
    ASSERT_EQ(1u, sink.received.size());
    EXPECT_EQ((std::vector<VARTYPE>{VT_BSTR, VT_BYREF | VT_I4, VT_BSTR}), sink.received[0].types);
    EXPECT_EQ(L"where", textOf(V_BSTR(&sink.received[0].arguments[0])));
    EXPECT_EQ(5, V_I4(&sink.received[0].arguments[1]));
    EXPECT_EQ(std::wstring(L"why\0not", 7), textOf(V_BSTR(&sink.received[0].arguments[2])));
}

TEST_F(Events, a_disconnected_listener_is_called_no_more) {
    EventSink sink(DIID___cAudioGraph);
    sink.connect(unknown(), DIID___cAudioGraph);
    sink.disconnect();
    fire(1);
    EXPECT_TRUE(sink.received.empty());
}

TEST_F(Events, a_listener_may_disconnect_itself_and_others_in_its_handler) {
    EventSink first(DIID___cAudioGraph), second(DIID___cAudioGraph);
    first.connect(unknown(), DIID___cAudioGraph);
    second.connect(unknown(), DIID___cAudioGraph);
    first.handler = [&](const EventSink::Event&) {
        first.disconnect();
        second.disconnect();
    };
    fire(1);
    fire(2);
    EXPECT_EQ(std::vector<long>{1}, numbers(first));
    // Who listened when the event was raised hears it.
    EXPECT_EQ(std::vector<long>{1}, numbers(second));
}

TEST_F(Events, a_listener_connected_in_a_handler_receives_the_next_event) {
    EventSink first(DIID___cAudioGraph), late(DIID___cAudioGraph);
    first.connect(unknown(), DIID___cAudioGraph);
    first.handler = [&](const EventSink::Event&) {
        if (first.received.size() == 1)
            late.connect(unknown(), DIID___cAudioGraph);
    };
    fire(1);
    fire(2);
    EXPECT_EQ(std::vector<long>{2}, numbers(late));
}

TEST_F(Events, the_control_may_be_released_in_its_own_event) {
    EventSink sink(DIID___cAudioGraph);
    sink.connect(unknown(), DIID___cAudioGraph);
    TestControl* raw = control.get();
    sink.handler = [&](const EventSink::Event&) {
        sink.disconnect();
        control.reset();
        EXPECT_EQ(1, TestControl::alive);
    };
    raw->base().events().fire(changed, {std::int32_t{1}});
    EXPECT_EQ(0, TestControl::alive);
}

TEST_F(Events, wait_while_they_are_frozen_and_come_in_order_when_they_thaw) {
    EventSink sink(DIID___cAudioGraph);
    sink.connect(unknown(), DIID___cAudioGraph);
    oleControl()->FreezeEvents(TRUE);
    oleControl()->FreezeEvents(TRUE);
    fire(1);
    fire(2);
    oleControl()->FreezeEvents(FALSE);
    EXPECT_TRUE(sink.received.empty());
    oleControl()->FreezeEvents(FALSE);
    EXPECT_EQ((std::vector<long>{1, 2}), numbers(sink));
}

TEST_F(Events, of_which_only_the_latest_counts_are_kept_once) {
    EventSink sink(DIID___cAudioGraph);
    sink.connect(unknown(), DIID___cAudioGraph);
    oleControl()->FreezeEvents(TRUE);
    for (std::int32_t i = 0; i < 1000; ++i)
        control->base().events().fire(changed, {i}, EventSource::WhenFrozen::keepLatest);
    oleControl()->FreezeEvents(FALSE);
    EXPECT_EQ(std::vector<long>{999}, numbers(sink));
}

TEST_F(Events, thawing_what_is_not_frozen_does_nothing) {
    EventSink sink(DIID___cAudioGraph);
    sink.connect(unknown(), DIID___cAudioGraph);
    oleControl()->FreezeEvents(FALSE);
    oleControl()->FreezeEvents(TRUE);
    fire(1);
    EXPECT_TRUE(sink.received.empty());
}

TEST_F(Events, what_a_handler_writes_by_reference_reaches_no_other_listener) {
    EventSink first(DIID___cAudioGraph), second(DIID___cAudioGraph);
    first.connect(unknown(), DIID___cAudioGraph);
    second.connect(unknown(), DIID___cAudioGraph);
    control->base().events().fire(changed, {EventSource::ByReference{5}});
    EXPECT_EQ(std::vector<long>{5}, numbers(second));
}

TEST_F(Events, no_listener_is_called_by_a_control_that_is_being_destroyed) {
    EventSink sink(DIID___cAudioGraph);
    sink.connect(unknown(), DIID___cAudioGraph);
    control->base().disconnect();
    fire(1);
    EXPECT_TRUE(sink.received.empty());
}

TEST_F(Events, a_foreign_listener_is_refused) {
    PropertySink wrong;
    DWORD cookie = 1;
    EXPECT_EQ(CONNECT_E_CANNOTCONNECT, point()->Advise(&wrong, &cookie));
    EXPECT_EQ(0u, cookie);
}

TEST_F(Events, null_pointers_are_refused_by_a_connection_point) {
    EventSink sink(DIID___cAudioGraph);
    DWORD cookie = 0;
    EXPECT_EQ(E_POINTER, point()->Advise(nullptr, &cookie));
    EXPECT_EQ(E_POINTER, point()->Advise(&sink, nullptr));
    EXPECT_EQ(E_POINTER, point()->GetConnectionInterface(nullptr));
    EXPECT_EQ(E_POINTER, point()->EnumConnections(nullptr));
    EXPECT_EQ(E_POINTER, point()->GetConnectionPointContainer(nullptr));
    EXPECT_EQ(E_POINTER, container()->FindConnectionPoint(DIID___cAudioGraph, nullptr));
    EXPECT_EQ(E_POINTER, container()->EnumConnectionPoints(nullptr));
}

TEST_F(Events, an_unknown_cookie_or_point_is_refused) {
    EXPECT_EQ(CONNECT_E_NOCONNECTION, point()->Unadvise(4711));
    ComPtr<IConnectionPoint> none;
    EXPECT_EQ(CONNECT_E_NOCONNECTION, container()->FindConnectionPoint(IID_IDispatch, none.put()));
}

TEST_F(Events, a_connection_point_names_its_interface_and_its_container) {
    IID iid{};
    EXPECT_EQ(S_OK, point()->GetConnectionInterface(&iid));
    EXPECT_EQ(DIID___cAudioGraph, iid);
    ComPtr<IConnectionPointContainer> back;
    EXPECT_EQ(S_OK, point()->GetConnectionPointContainer(back.put()));
    EXPECT_EQ(container().get(), back.get());
}

TEST_F(Events, both_connection_points_are_enumerated) {
    ComPtr<IEnumConnectionPoints> points;
    ASSERT_EQ(S_OK, container()->EnumConnectionPoints(points.put()));
    IConnectionPoint* found[3]{};
    ULONG count = 0;
    EXPECT_EQ(S_FALSE, points->Next(3, found, &count));
    ASSERT_EQ(2u, count);
    IID first{}, second{};
    found[0]->GetConnectionInterface(&first);
    found[1]->GetConnectionInterface(&second);
    EXPECT_EQ(DIID___cAudioGraph, first);
    EXPECT_EQ(IID_IPropertyNotifySink, second);
    found[0]->Release();
    found[1]->Release();
}

TEST_F(Events, connections_are_enumerated_with_their_cookies) {
    EventSink sink(DIID___cAudioGraph);
    sink.connect(unknown(), DIID___cAudioGraph);
    ComPtr<IEnumConnections> connections, copy;
    ASSERT_EQ(S_OK, point()->EnumConnections(connections.put()));
    CONNECTDATA data{};
    EXPECT_EQ(S_OK, connections->Next(1, &data, nullptr));
    EXPECT_EQ(1u, data.dwCookie);
    data.pUnk->Release();
    EXPECT_EQ(S_FALSE, connections->Next(1, &data, nullptr));
    EXPECT_EQ(S_OK, connections->Reset());
    EXPECT_EQ(S_OK, connections->Clone(copy.put()));
    EXPECT_EQ(S_OK, copy->Skip(1));
    EXPECT_EQ(S_FALSE, copy->Skip(1));
    EXPECT_EQ(E_POINTER, connections->Next(2, &data, nullptr));
    EXPECT_EQ(E_POINTER, connections->Clone(nullptr));
}

TEST_F(Events, listeners_are_notified_of_a_property_change) {
    PropertySink sink;
    ASSERT_EQ(S_OK, sink.connect(point(IID_IPropertyNotifySink)));
    EXPECT_EQ(S_OK, control->base().setProperty(TestControl::level, 50));
    EXPECT_EQ(std::vector<DISPID>{1}, sink.received);
    EXPECT_EQ(1, sink.asked);
}

TEST_F(Events, a_listener_can_forbid_a_property_change) {
    PropertySink sink;
    sink.allows = false;
    ASSERT_EQ(S_OK, sink.connect(point(IID_IPropertyNotifySink)));
    EXPECT_EQ(S_FALSE, control->base().setProperty(TestControl::level, 50));
    EXPECT_EQ(25, control->base().property(TestControl::level));
    EXPECT_TRUE(sink.received.empty());
}

TEST_F(Events, writing_the_same_value_is_no_change) {
    PropertySink sink;
    sink.connect(point(IID_IPropertyNotifySink));
    EXPECT_EQ(S_OK, control->base().setProperty(TestControl::level, 25));
    EXPECT_TRUE(sink.received.empty());
}

TEST_F(Events, the_control_may_be_released_while_it_is_made_new) {
    loseWhileLoading<IPersistStreamInit>([](auto& persist) { return persist.InitNew(); });
}

TEST_F(Events, the_control_may_be_released_while_it_is_loaded_from_a_stream) {
    const auto stream = memoryStream();
    ASSERT_EQ(S_OK, as<IPersistStreamInit>()->Save(stream.get(), TRUE));
    rewind(stream);
    loseWhileLoading<IPersistStreamInit>([&](auto& persist) { return persist.Load(stream.get()); });
}

TEST_F(Events, the_control_may_be_released_while_it_is_loaded_from_a_property_bag) {
    MemoryPropertyBag bag;
    loseWhileLoading<IPersistPropertyBag>(
        [&](auto& persist) { return persist.Load(&bag, nullptr); });
}

TEST_F(Events, the_control_may_be_released_while_it_is_activated_quickly) {
    LeavingSink sink(control);
    QACONTAINER host{};
    host.cbSize = sizeof host;
    host.pPropertyNotifySink = &sink;
    QACONTROL filled{};
    filled.cbSize = sizeof filled;
    IQuickActivate* const raw = as<IQuickActivate>().get();
    EXPECT_EQ(S_OK, raw->QuickActivate(&host, &filled));
    EXPECT_EQ(miscStatus(testControlClass), filled.dwMiscStatus);
    EXPECT_EQ(0, TestControl::alive);
}

TEST_F(Events, quick_activation_connects_everything_at_once) {
    EventSink events(DIID___cAudioGraph);
    PropertySink properties;
    QACONTAINER host{};
    host.cbSize = 56; // Visual Basic's and .NET's record: 14 fields
    host.pUnkEventSink = &events;
    host.pPropertyNotifySink = &properties;
    QACONTROL filled{};
    filled.cbSize = sizeof filled;
    const auto quick = ComPtr<IUnknown>(unknown()).query<IQuickActivate>();
    ASSERT_EQ(S_OK, quick->QuickActivate(&host, &filled));
    EXPECT_EQ(miscStatus(testControlClass), filled.dwMiscStatus);
    EXPECT_NE(0u, filled.dwEventCookie);
    fire(3);
    control->base().setProperty(TestControl::level, 1);
    EXPECT_EQ(1u, events.received.size());
    EXPECT_EQ(1u, properties.received.size());
    EXPECT_EQ(S_OK, point()->Unadvise(filled.dwEventCookie));
    EXPECT_EQ(S_OK, point(IID_IPropertyNotifySink)->Unadvise(filled.dwPropNotifyCookie));
    EXPECT_EQ(E_POINTER, quick->QuickActivate(nullptr, &filled));
    host.cbSize = 3;
    EXPECT_EQ(E_INVALIDARG, quick->QuickActivate(&host, &filled));
}

TEST_F(Events, the_class_information_names_the_event_interface) {
    const auto info = ComPtr<IUnknown>(unknown()).query<IProvideClassInfo2>();
    GUID guid{};
    EXPECT_EQ(S_OK, info->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &guid));
    EXPECT_EQ(DIID___cAudioGraph, guid);
    EXPECT_EQ(E_INVALIDARG, info->GetGUID(77, &guid));
    EXPECT_EQ(E_POINTER, info->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, nullptr));
    EXPECT_EQ(E_POINTER, info->GetClassInfo(nullptr));
    ComPtr<ITypeInfo> type;
    EXPECT_EQ(S_OK, info->GetClassInfo(type.put()));
}

} // namespace
