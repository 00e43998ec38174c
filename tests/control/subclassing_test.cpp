// The registered subclassing front as hosts use it: early bound, and by name as a script does,
// whose client comes as an object and not as an ISubclass.

#include "Support.h"
#include "support/HiddenWindow.h"
#include "support/SubclassClient.h"

namespace corvina::test {
namespace {

constexpr long hello = WM_USER + 7;

// A client as COM knows it.
class ComClient final : public SubclassClient {
public:
    using SubclassClient::SubclassClient;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        *result = iid == IID_IUnknown || iid == IID_IDispatch || iid == __uuidof(ISubclass)
                      ? static_cast<ISubclass*>(this)
                      : nullptr;
        if (!*result)
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
};

class Subclassing : public ApartmentTest {
protected:
    void SetUp() override {
        ApartmentTest::SetUp();
        front = create<_GSubclass>(CLSID_GSubclass);
        ASSERT_TRUE(front);
    }
    void TearDown() override {
        front.reset();
        ApartmentTest::TearDown();
    }
    [[nodiscard]] long hwnd() const { return reinterpret_cast<long>(window.handle()); }
    [[nodiscard]] LRESULT send() const { return ::SendMessageA(window.handle(), hello, 1, 2); }

    // Calls by name with the client in a VARIANT of this type.
    HRESULT call(const wchar_t* name, VARTYPE type) {
        IDispatch* object = &client;
        Variant first;
        first.vt = type;
        if (type & VT_BYREF)
            first.ppdispVal = &object;
        else
            first.pdispVal = object;
        client.AddRef(); // the VARIANT's own, which it gives back
        const HRESULT result =
            callByName(front.get(), name, DISPATCH_METHOD, {first, Variant(hwnd()), Variant(hello)},
                       nullptr, nullptr);
        return result;
    }

    HiddenWindow window;
    ComClient client{[](HWND, UINT, WPARAM, LPARAM) { return 42; }};
    ComPtr<_GSubclass> front;
};

TEST_F(Subclassing, carries_a_message_to_an_early_bound_client) {
    ISubclass* iwp = &client;
    ASSERT_EQ(S_OK, front->AttachMessage(&iwp, hwnd(), hello));
    EXPECT_EQ(42, send());
    ASSERT_EQ(S_OK, front->DetachMessage(&iwp, hwnd(), hello));
    EXPECT_EQ(0, send());
}

TEST_F(Subclassing, carries_a_message_to_a_client_given_by_name) {
    for (const int kind : {int{VT_DISPATCH}, VT_DISPATCH | VT_BYREF}) {
        const auto type = static_cast<VARTYPE>(kind);
        ASSERT_EQ(S_OK, call(L"AttachMessage", type)) << type;
        EXPECT_EQ(42, send());
        ASSERT_EQ(S_OK, call(L"DetachMessage", type)) << type;
        EXPECT_EQ(0, send());
    }
}

} // namespace
} // namespace corvina::test
