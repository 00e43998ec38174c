// A control kept in a stream, a storage and a property bag, and what damaged data does.

#include "PersistenceDoubles.h"
#include "TestControl.h"
#include "runtime/RuntimeError.h"

using namespace corvina;
using namespace corvina::test;

namespace {

class Persistence : public ControlBaseTest {
protected:
    void TearDown() override {
        other.reset();
        ControlBaseTest::TearDown();
    }

    void change() {
        control->base().setProperty(TestControl::level, 77);
        control->base().setProperty(TestControl::colour, -3);
        SIZEL size{1234, 567};
        as<IOleObject>(control)->SetExtent(DVASPECT_CONTENT, &size);
    }
    void expectSame() {
        for (const int index : {TestControl::level, TestControl::colour, TestControl::ticks})
            EXPECT_EQ(control->base().property(index), other->base().property(index)) << index;
        SIZEL size{};
        as<IOleObject>(other)->GetExtent(DVASPECT_CONTENT, &size);
        EXPECT_EQ(1234, size.cx);
        EXPECT_EQ(567, size.cy);
    }
    void expectInitial(const ComPtr<TestControl>& of) {
        EXPECT_EQ(25, of->base().property(TestControl::level));
        EXPECT_EQ(0x00FF00, of->base().property(TestControl::colour));
        EXPECT_EQ(10, of->base().property(TestControl::ticks));
    }
    ComPtr<IStream> streamOf(std::initializer_list<std::int32_t> numbers) {
        auto stream = memoryStream();
        for (const std::int32_t number : numbers)
            stream->Write(&number, sizeof number, nullptr);
        rewind(stream);
        return stream;
    }

    static constexpr std::int32_t signature = 0x31767243; // "Crv1"
    ComPtr<TestControl> other = makeCom<TestControl>();
};

TEST_F(Persistence, a_new_control_has_its_initial_values) {
    change();
    EXPECT_EQ(S_OK, as<IPersistStreamInit>(control)->InitNew());
    expectInitial(control);
}

TEST_F(Persistence, a_stream_brings_everything_back) {
    change();
    const auto stream = memoryStream();
    ASSERT_EQ(S_OK, as<IPersistStreamInit>(control)->Save(stream.get(), TRUE));
    rewind(stream);
    ASSERT_EQ(S_OK, as<IPersistStreamInit>(other)->Load(stream.get()));
    expectSame();
}

TEST_F(Persistence, a_stream_is_as_long_as_was_said) {
    const auto stream = memoryStream();
    ULARGE_INTEGER said{}, written{};
    EXPECT_EQ(S_OK, as<IPersistStreamInit>(control)->GetSizeMax(&said));
    as<IPersistStreamInit>(control)->Save(stream.get(), TRUE);
    stream->Seek({}, STREAM_SEEK_CUR, &written);
    EXPECT_EQ(said.QuadPart, written.QuadPart);
}

TEST_F(Persistence, a_storage_brings_everything_back) {
    change();
    const auto storage = memoryStorage();
    ASSERT_EQ(S_OK, as<IPersistStorage>(control)->Save(storage.get(), TRUE));
    EXPECT_EQ(S_OK, as<IPersistStorage>(control)->SaveCompleted(nullptr));
    ASSERT_EQ(S_OK, as<IPersistStorage>(other)->Load(storage.get()));
    expectSame();
    EXPECT_EQ(S_OK, as<IPersistStorage>(other)->HandsOffStorage());
}

TEST_F(Persistence, a_property_bag_brings_everything_back) {
    change();
    MemoryPropertyBag bag;
    ASSERT_EQ(S_OK, as<IPersistPropertyBag>(control)->Save(&bag, TRUE, FALSE));
    ASSERT_EQ(S_OK, as<IPersistPropertyBag>(other)->Load(&bag, nullptr));
    expectSame();
}

TEST_F(Persistence, values_are_kept_under_their_names) {
    change();
    MemoryPropertyBag bag;
    as<IPersistPropertyBag>(control)->Save(&bag, TRUE, FALSE);
    ASSERT_TRUE(bag.has(L"Level"));
    EXPECT_EQ(77, V_I4(&bag.values.at(L"Level")));
}

TEST_F(Persistence, initial_values_are_not_written_into_a_bag) {
    MemoryPropertyBag bag;
    as<IPersistPropertyBag>(control)->Save(&bag, TRUE, FALSE);
    EXPECT_FALSE(bag.has(L"Level"));
    EXPECT_FALSE(bag.has(L"Ticks"));
}

TEST_F(Persistence, all_values_are_written_into_a_bag_that_asks_for_all) {
    MemoryPropertyBag bag;
    as<IPersistPropertyBag>(control)->Save(&bag, TRUE, TRUE);
    EXPECT_TRUE(bag.has(L"Level"));
    EXPECT_TRUE(bag.has(L"Ticks"));
}

TEST_F(Persistence, what_is_missing_in_a_bag_gets_its_initial_value) {
    change();
    MemoryPropertyBag bag;
    bag.put(L"Ticks", Variant(3));
    ASSERT_EQ(S_OK, as<IPersistPropertyBag>(control)->Load(&bag, nullptr));
    EXPECT_EQ(25, control->base().property(TestControl::level));
    EXPECT_EQ(3, control->base().property(TestControl::ticks));
}

TEST_F(Persistence, texts_that_are_numbers_are_taken_from_a_bag) {
    MemoryPropertyBag bag;
    bag.put(L"Ticks", Variant(L"12"));
    ASSERT_EQ(S_OK, as<IPersistPropertyBag>(control)->Load(&bag, nullptr));
    EXPECT_EQ(12, control->base().property(TestControl::ticks));
}

TEST_F(Persistence, values_of_no_use_in_a_bag_get_their_initial_value) {
    MemoryPropertyBag bag;
    bag.put(L"Ticks", Variant(L"many"));
    bag.put(L"Level", Variant(1000));
    ASSERT_EQ(S_OK, as<IPersistPropertyBag>(control)->Load(&bag, nullptr));
    expectInitial(control);
}

TEST_F(Persistence, negative_extents_in_a_bag_are_passed_over) {
    MemoryPropertyBag bag;
    bag.put(L"_ExtentX", Variant(-5));
    bag.put(L"_ExtentY", Variant(500));
    ASSERT_EQ(S_OK, as<IPersistPropertyBag>(control)->Load(&bag, nullptr));
    SIZEL size{};
    as<IOleObject>(control)->GetExtent(DVASPECT_CONTENT, &size);
    EXPECT_EQ(himetricFromPixels({200, 100}).cx, size.cx);
}

TEST_F(Persistence, a_bag_that_cannot_be_written_says_so) {
    MemoryPropertyBag bag;
    bag.writeResult = E_ACCESSDENIED;
    EXPECT_EQ(E_ACCESSDENIED, as<IPersistPropertyBag>(control)->Save(&bag, TRUE, TRUE));
}

TEST_F(Persistence, an_empty_stream_is_refused_and_leaves_initial_values) {
    change();
    EXPECT_TRUE(FAILED(as<IPersistStreamInit>(control)->Load(memoryStream().get())));
    expectInitial(control);
}

TEST_F(Persistence, a_foreign_stream_is_refused) {
    EXPECT_TRUE(
        FAILED(as<IPersistStreamInit>(control)->Load(streamOf({1, 2, 3, 4, 5, 6, 7}).get())));
    expectInitial(control);
}

TEST_F(Persistence, a_truncated_stream_is_refused_and_leaves_initial_values) {
    EXPECT_TRUE(FAILED(
        as<IPersistStreamInit>(control)->Load(streamOf({signature, 10, 10, 3, 50, 60}).get())));
    expectInitial(control);
}

TEST_F(Persistence, a_stream_that_lies_about_its_length_is_refused) {
    EXPECT_TRUE(
        FAILED(as<IPersistStreamInit>(control)->Load(streamOf({signature, 10, 10, -1, 50}).get())));
    expectInitial(control);
}

TEST_F(Persistence, a_shorter_stream_of_an_older_version_leaves_the_rest_initial) {
    ASSERT_EQ(S_OK,
              as<IPersistStreamInit>(control)->Load(streamOf({signature, 10, 10, 1, 50}).get()));
    EXPECT_EQ(50, control->base().property(TestControl::level));
    EXPECT_EQ(10, control->base().property(TestControl::ticks));
}

TEST_F(Persistence, a_longer_stream_of_a_newer_version_is_read_as_far_as_known) {
    ASSERT_EQ(S_OK, as<IPersistStreamInit>(control)->Load(
                        streamOf({signature, 10, 10, 5, 50, 1, 2, 3, 4}).get()));
    EXPECT_EQ(2, control->base().property(TestControl::ticks));
}

TEST_F(Persistence, a_value_that_is_refused_gets_its_initial_value) {
    ASSERT_EQ(S_OK, as<IPersistStreamInit>(control)->Load(
                        streamOf({signature, 10, 10, 3, 101, 7, 8}).get()));
    EXPECT_EQ(25, control->base().property(TestControl::level));
    EXPECT_EQ(8, control->base().property(TestControl::ticks));
}

TEST_F(Persistence, a_control_is_dirty_from_a_change_to_the_next_save) {
    const auto stream = as<IPersistStreamInit>(control);
    EXPECT_EQ(S_FALSE, stream->IsDirty());
    control->base().setProperty(TestControl::level, 1);
    EXPECT_EQ(S_OK, stream->IsDirty());
    stream->Save(memoryStream().get(), FALSE);
    EXPECT_EQ(S_OK, stream->IsDirty());
    stream->Save(memoryStream().get(), TRUE);
    EXPECT_EQ(S_FALSE, stream->IsDirty());
}

TEST_F(Persistence, a_refused_value_raises_invalid_property_value) {
    try {
        control->base().setProperty(TestControl::level, 101);
        FAIL();
    } catch (const RuntimeError& error) {
        EXPECT_EQ(380, error.number());
    }
}

TEST_F(Persistence, the_control_is_notified_that_it_was_loaded) {
    as<IPersistStreamInit>(control)->InitNew();
    EXPECT_EQ(1, control->reloaded);
}

TEST_F(Persistence, the_class_id_is_returned) {
    CLSID clsid{};
    EXPECT_EQ(S_OK, as<IPersistStorage>(control)->GetClassID(&clsid));
    EXPECT_EQ(CLSID_cAudioGraph, clsid);
    EXPECT_EQ(E_POINTER, as<IPersistStorage>(control)->GetClassID(nullptr));
}

TEST_F(Persistence, each_damage_of_a_stream_has_its_own_error) {
    const auto persist = as<IPersistStreamInit>(control);
    EXPECT_EQ(STG_E_DOCFILECORRUPT, persist->Load(streamOf({1, 2, 3, 4, 5}).get()));
    EXPECT_EQ(STG_E_DOCFILECORRUPT, persist->Load(streamOf({signature, -1, 10, 0}).get()));
    EXPECT_EQ(STG_E_DOCFILECORRUPT, persist->Load(streamOf({signature, 10, -1, 0}).get()));
    EXPECT_EQ(STG_E_READFAULT, persist->Load(streamOf({signature, 10}).get()));
    EXPECT_EQ(STG_E_READFAULT, persist->Load(streamOf({signature, 10, 10, 3, 50, 60}).get()));
    BrokenStream broken(E_ACCESSDENIED);
    EXPECT_EQ(E_ACCESSDENIED, persist->Load(&broken));
    EXPECT_EQ(E_ACCESSDENIED, persist->Save(&broken, TRUE));
}

TEST_F(Persistence, an_extent_of_nothing_is_one) {
    EXPECT_EQ(S_OK, as<IPersistStreamInit>(control)->Load(streamOf({signature, 0, 0, 0}).get()));
    SIZEL size{7, 7};
    as<IOleObject>(control)->GetExtent(DVASPECT_CONTENT, &size);
    EXPECT_EQ(0, size.cx);
    EXPECT_EQ(0, size.cy);
}

TEST_F(Persistence, a_control_without_properties_is_kept_in_a_storage_too) {
    ControlClass bare = testControlClass;
    bare.properties = {};
    auto without = makeCom<TestControl>(bare);
    const auto storage = memoryStorage();
    ASSERT_EQ(S_OK, as<IPersistStorage>(without)->Save(storage.get(), TRUE));
    EXPECT_EQ(S_OK, as<IPersistStorage>(without)->Load(storage.get()));
}

TEST_F(Persistence, a_loaded_or_new_control_is_not_dirty) {
    const auto persist = as<IPersistStreamInit>(control);
    const auto stream = memoryStream();
    ASSERT_EQ(S_OK, persist->Save(stream.get(), TRUE));
    rewind(stream);
    change();
    EXPECT_EQ(S_OK, persist->IsDirty());
    EXPECT_EQ(S_OK, persist->Load(stream.get()));
    EXPECT_EQ(S_FALSE, persist->IsDirty());
    change();
    EXPECT_EQ(S_OK, persist->InitNew());
    EXPECT_EQ(S_FALSE, persist->IsDirty());
}

TEST_F(Persistence, a_bag_gets_the_extent_and_clears_the_change_if_it_is_asked_to) {
    change();
    MemoryPropertyBag bag;
    const auto persist = as<IPersistPropertyBag>(control);
    EXPECT_EQ(S_OK, persist->Save(&bag, FALSE, FALSE));
    EXPECT_EQ(S_OK, as<IPersistStreamInit>(control)->IsDirty());
    ASSERT_TRUE(bag.has(L"_ExtentX"));
    ASSERT_TRUE(bag.has(L"_ExtentY"));
    EXPECT_EQ(1234, V_I4(&bag.values.at(L"_ExtentX")));
    EXPECT_EQ(567, V_I4(&bag.values.at(L"_ExtentY")));
    EXPECT_EQ(S_OK, persist->Save(&bag, TRUE, FALSE));
    EXPECT_EQ(S_FALSE, as<IPersistStreamInit>(control)->IsDirty());
}

TEST_F(Persistence, null_pointers_are_refused) {
    const auto stream = as<IPersistStreamInit>(control);
    EXPECT_EQ(E_POINTER, stream->Load(nullptr));
    EXPECT_EQ(E_POINTER, stream->Save(nullptr, TRUE));
    EXPECT_EQ(E_POINTER, stream->GetSizeMax(nullptr));
    const auto bag = as<IPersistPropertyBag>(control);
    EXPECT_EQ(E_POINTER, bag->Load(nullptr, nullptr));
    EXPECT_EQ(E_POINTER, bag->Save(nullptr, TRUE, TRUE));
    const auto storage = as<IPersistStorage>(control);
    EXPECT_EQ(E_POINTER, storage->InitNew(nullptr));
    EXPECT_EQ(E_POINTER, storage->Load(nullptr));
    EXPECT_EQ(E_POINTER, storage->Save(nullptr, TRUE));
}

} // namespace
