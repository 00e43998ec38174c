// Late-bound calls of a member that takes a record, over an object that is nothing but that member.

#include "Support.h"
#include "com/RecordCall.h"
#include "com/TypeLibrary.h"
#include "support/ProcessObjects.h"

#include <array>

using namespace corvina;
using namespace corvina::test;

namespace {

constexpr DISPID describeDevice = 30; // GetDetailsDevice
constexpr GUID deviceRecord{
    0xc687d9f0, 0x726c, 0x4027, {0xb2, 0xe3, 0x29, 0x0d, 0x07, 0xa4, 0x0b, 0x61}};
constexpr DISPID countDevices = 31; // a member without a record
constexpr DISPID device = 42;       // a property, which returns nothing when it is written

// Every member of its table is GetDetailsDevice.
struct OneMember {
    static inline HRESULT returned = S_OK;
    static inline long index = 0;
    static inline long direction = 0;
    static inline AudioDeviceDetails* details = nullptr;

    static HRESULT STDMETHODCALLTYPE describe(void*, long index, long direction,
                                              AudioDeviceDetails* details, long* result) {
        OneMember::index = index;
        OneMember::direction = direction;
        OneMember::details = details;
        *result = 99;
        return returned;
    }

    OneMember() {
        members.fill(reinterpret_cast<void*>(&describe));
        returned = S_OK;
    }
    OneMember(const OneMember&) = delete;
    OneMember& operator=(const OneMember&) = delete;

    std::array<void*, 300> members;
    void** table = members.data();
    IUnknown* object() { return reinterpret_cast<IUnknown*>(&table); }
};

class RecordCall : public ApartmentTest {
protected:
    void SetUp() override {
        ApartmentTest::SetUp();
        ASSERT_EQ(S_OK, loadModuleTypeInfo(IID__cPlayer, info));
        ComPtr<ITypeInfo> type;
        ASSERT_EQ(S_OK, loadModuleTypeInfo(deviceRecord, type));
        ASSERT_EQ(S_OK, ::GetRecordInfoFromTypeInfo(type.get(), record.put()));
        V_VT(&arguments[2]) = V_VT(&arguments[1]) = VT_I4;
        V_I4(&arguments[2]) = 5;
        V_I4(&arguments[1]) = 2;
        V_VT(&arguments[0]) = VT_RECORD | VT_BYREF;
        V_RECORD(&arguments[0]) = &details;
        V_RECORDINFO(&arguments[0]) = record.get();
        V_VT(&result) = VT_I4;
        V_I4(&result) = 7;
    }
    void TearDown() override {
        ::SysFreeString(exception.bstrSource);
        ::SysFreeString(exception.bstrDescription);
        record.reset();
        info.reset();
        ApartmentTest::TearDown();
    }

    HRESULT call(DISPID id = describeDevice, WORD flags = DISPATCH_METHOD) {
        return callWithRecords(*info.get(), member.object(), id, flags, given, &result, &exception,
                               &badArgument);
    }

    OneMember member;
    ComPtr<ITypeInfo> info;
    ComPtr<IRecordInfo> record;
    AudioDeviceDetails details{};
    VARIANT arguments[3]{};
    DISPPARAMS given{arguments, nullptr, 3, 0};
    VARIANT result{};
    EXCEPINFO exception{};
    UINT badArgument = 77;
};

TEST_F(RecordCall, hands_over_the_record_itself_and_returns_the_result) {
    EXPECT_EQ(S_OK, call());
    EXPECT_EQ(5, OneMember::index);
    EXPECT_EQ(2, OneMember::direction);
    EXPECT_EQ(&details, OneMember::details);
    EXPECT_EQ(VT_I4, V_VT(&result));
    EXPECT_EQ(99, V_I4(&result));
}

TEST_F(RecordCall, looks_behind_a_reference_to_a_variant) {
    VARIANT behind[3]{};
    std::copy(std::begin(arguments), std::end(arguments), std::begin(behind));
    for (int i = 0; i < 3; ++i) {
        V_VT(&arguments[i]) = VT_BYREF | VT_VARIANT;
        V_VARIANTREF(&arguments[i]) = &behind[i];
    }
    EXPECT_EQ(S_OK, call());
    EXPECT_EQ(5, OneMember::index);
    EXPECT_EQ(&details, OneMember::details);
    V_VARIANTREF(&arguments[0]) = nullptr;
    EXPECT_EQ(DISP_E_TYPEMISMATCH, call());
    EXPECT_EQ(0u, badArgument);
}

// An object that stands for a number.
class NumberObject final : public IDispatch {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** found) override {
        *found = this;
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* value,
                                     EXCEPINFO*, UINT*) override {
        if (id != DISPID_VALUE)
            return DISP_E_MEMBERNOTFOUND;
        V_VT(value) = VT_I4;
        V_I4(value) = 11;
        return S_OK;
    }
};

TEST_F(RecordCall, takes_the_default_value_of_an_object) {
    NumberObject number;
    V_VT(&arguments[2]) = VT_DISPATCH;
    V_DISPATCH(&arguments[2]) = &number;
    EXPECT_EQ(S_OK, call());
    EXPECT_EQ(11, OneMember::index);
}

TEST_F(RecordCall, describes_the_failure_of_the_member) {
    OneMember::returned = static_cast<HRESULT>(0x800A0005);
    ComPtr<ICreateErrorInfo> error;
    ASSERT_EQ(S_OK, ::CreateErrorInfo(error.put()));
    wchar_t source[] = L"Corvina.cPlayer", text[] = L"Invalid procedure call";
    error->SetSource(source);
    error->SetDescription(text);
    ::SetErrorInfo(0, ComPtr<ICreateErrorInfo>(error).query<IErrorInfo>().get());
    exception.wCode = 7;
    EXPECT_EQ(DISP_E_EXCEPTION, call());
    EXPECT_EQ(OneMember::returned, exception.scode);
    EXPECT_EQ(0, exception.wCode);
    EXPECT_EQ(source, textOf(exception.bstrSource));
    EXPECT_EQ(text, textOf(exception.bstrDescription));
    EXPECT_EQ(VT_EMPTY, V_VT(&result));
}

TEST_F(RecordCall, describes_a_failure_without_a_text_by_its_number_alone) {
    OneMember::returned = E_ACCESSDENIED;
    ::SetErrorInfo(0, nullptr);
    EXPECT_EQ(DISP_E_EXCEPTION, call());
    EXPECT_EQ(E_ACCESSDENIED, exception.scode);
    EXPECT_EQ(nullptr, exception.bstrSource);
    EXPECT_EQ(nullptr, exception.bstrDescription);
    EXPECT_EQ(DISP_E_EXCEPTION, callWithRecords(*info.get(), member.object(), describeDevice,
                                                DISPATCH_METHOD, given, nullptr, nullptr, nullptr));
}

TEST_F(RecordCall, refuses_a_name_that_is_no_parameters_or_is_given_twice) {
    DISPID names[] = {3};
    given.rgdispidNamedArgs = names;
    given.cNamedArgs = 1;
    for (const DISPID unknown : {3, 4, 0, 1}) { // the first two are given by their place
        names[0] = unknown;
        EXPECT_EQ(DISP_E_PARAMNOTFOUND, call()) << unknown;
    }
    names[0] = 2;
    EXPECT_EQ(S_OK, call());
}

TEST_F(RecordCall, is_not_for_members_without_a_record) {
    given.cArgs = 1;
    given.rgvarg = &arguments[1];
    EXPECT_EQ(E_NOTIMPL, call(countDevices));
    EXPECT_EQ(E_NOTIMPL, call(device, DISPATCH_PROPERTYPUT));
    EXPECT_EQ(E_NOTIMPL, call(4711));
    EXPECT_EQ(VT_EMPTY, V_VT(&result));
}

TEST_F(RecordCall, leaves_no_memory_behind) {
    const auto callOften = [this] {
        for (int i = 0; i < 60; ++i)
            EXPECT_EQ(S_OK, call());
    };
    callOften();
    const std::size_t before = countHeapBytes();
    callOften();
    EXPECT_LT(countHeapBytes(), before + 60 * sizeof(TYPEATTR) / 2);
}

} // namespace
