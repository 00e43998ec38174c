// The COM layer of the subclassing, called as an early-bound host calls it.

#include "subclass/GSubclass.h"
#include "subclass/MSubclass.h"
#include "support/HiddenWindow.h"
#include "support/SubclassClient.h"

#include <gtest/gtest.h>
#include <oleauto.h>
#include <string>

namespace corvina::test {
namespace {

constexpr long hello = WM_USER + 7;

// The old procedure of a window, which returns its arguments.
LRESULT CALLBACK bothArguments(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return message == hello ? static_cast<LRESULT>(wParam) * 0x100 + lParam
                            : ::DefWindowProcA(window, message, wParam, lParam);
}

class SubclassingObject : public ::testing::Test {
protected:
    [[nodiscard]] long hwnd() const { return reinterpret_cast<long>(window.handle()); }
    HRESULT attach(ISubclass* iwp, long handle) {
        return object->AttachMessage(&iwp, handle, hello);
    }

    HiddenWindow window;
    ComPtr<GSubclass> object = makeCom<GSubclass>();
    SubclassClient client{[](HWND, UINT, WPARAM, LPARAM) { return 42; }};
};

TEST_F(SubclassingObject, attaches_and_detaches_a_client) {
    ISubclass* reference = &client;
    ASSERT_EQ(object->AttachMessage(&reference, hwnd(), hello), S_OK);
    EXPECT_EQ(::SendMessageA(window.handle(), hello, 0, 0), 42);
    ASSERT_EQ(object->DetachMessage(&reference, hwnd(), hello), S_OK);
    EXPECT_EQ(::SendMessageA(window.handle(), hello, 0, 0), 0);
    EXPECT_EQ(reference, &client);
}

TEST_F(SubclassingObject, the_current_message_is_the_last_one_dispatched) {
    ASSERT_EQ(attach(&client, hwnd()), S_OK);
    ::SendMessageA(window.handle(), hello, 0, 0);
    long message = 0;
    EXPECT_EQ(object->get_CurrentMessage(&message), S_OK);
    EXPECT_EQ(message, hello);
}

TEST_F(SubclassingObject, the_old_procedure_of_a_window_gets_the_arguments) {
    ::SetWindowLongA(window.handle(), GWL_WNDPROC, reinterpret_cast<LONG>(&bothArguments));
    ASSERT_EQ(attach(&client, hwnd()), S_OK);
    long result = 0;
    EXPECT_EQ(object->CallOldWindowProc(hwnd(), hello, 0x11, 0x22, &result), S_OK);
    EXPECT_EQ(result, 0x1122);
}

TEST_F(SubclassingObject, the_old_procedure_of_a_window_without_one_returns_0) {
    long result = 7;
    EXPECT_EQ(object->CallOldWindowProc(hwnd(), hello, 1, 2, &result), S_OK);
    EXPECT_EQ(result, 0);
}

TEST_F(SubclassingObject, the_errors_are_those_of_the_mechanism_with_text_and_source) {
    EXPECT_EQ(attach(&client, 0), static_cast<HRESULT>(0x80040000 + 13083));
    IErrorInfo* error = nullptr;
    ASSERT_EQ(::GetErrorInfo(0, &error), S_OK);
    const auto information = ComPtr<IErrorInfo>::adopt(error);
    BSTR text = nullptr;
    BSTR source = nullptr;
    information->GetDescription(&text);
    information->GetSource(&source);
    EXPECT_STREQ(text, L"Invalid window");
    EXPECT_STREQ(source, L"g_subclass_test.WindowProc");
    ::SysFreeString(text);
    ::SysFreeString(source);
}

TEST_F(SubclassingObject, attaching_nothing_is_an_invalid_call) {
    EXPECT_EQ(attach(nullptr, hwnd()), static_cast<HRESULT>(0x800A0005));
    EXPECT_EQ(object->AttachMessage(nullptr, hwnd(), hello), static_cast<HRESULT>(0x800A0005));
    EXPECT_EQ(object->DetachMessage(nullptr, hwnd(), hello), S_OK);
}

TEST_F(SubclassingObject, results_need_a_place) {
    EXPECT_EQ(object->get_CurrentMessage(nullptr), E_POINTER);
    EXPECT_EQ(object->CallOldWindowProc(hwnd(), hello, 0, 0, nullptr), E_POINTER);
}

TEST_F(SubclassingObject, error_information_is_promised_for_its_interface) {
    EXPECT_EQ(object->InterfaceSupportsErrorInfo(__uuidof(_GSubclass)), S_OK);
    EXPECT_EQ(object->InterfaceSupportsErrorInfo(__uuidof(ISubclass)), S_FALSE);
}

} // namespace
} // namespace corvina::test
