// The player as script hosts use it: by name.

#include "Support.h"

using namespace corvina;
using namespace corvina::test;

namespace {

constexpr long badDeviceId = 2; // the wave device layer's own number

class LateBound : public ApartmentTest {
protected:
    void SetUp() override {
        ApartmentTest::SetUp();
        player = create<IDispatch>(CLSID_cPlayer);
        ASSERT_TRUE(player);
    }
    void TearDown() override {
        player.reset();
        ApartmentTest::TearDown();
    }

    HRESULT call(const wchar_t* name, std::vector<Variant> arguments = {}) {
        ::VariantClear(&result);
        return callByName(player.get(), name, DISPATCH_METHOD | DISPATCH_PROPERTYGET,
                          std::move(arguments), &result, &exception);
    }
    HRESULT put(const wchar_t* name, const Variant& value) {
        return callByName(player.get(), name, DISPATCH_PROPERTYPUT, {value});
    }
    DISPID idOf(const wchar_t* name) {
        auto* text = const_cast<wchar_t*>(name);
        DISPID id = DISPID_UNKNOWN;
        player->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id);
        return id;
    }
    HRESULT invoke(DISPID id, REFIID iid, WORD flags, DISPPARAMS* parameters) {
        return player->Invoke(id, iid, LOCALE_USER_DEFAULT, flags, parameters, nullptr, nullptr,
                              nullptr);
    }

    ComPtr<IDispatch> player;
    Variant result;
    EXCEPINFO exception{};
};

TEST_F(LateBound, a_method_returns_its_result) {
    EXPECT_EQ(S_OK, call(L"GetSecondsAsTimeString", {Variant(3725)}));
    EXPECT_EQ(L"1:02:05", textOf(V_BSTR(&result)));
}

TEST_F(LateBound, names_are_found_in_any_case) {
    EXPECT_EQ(S_OK, call(L"getsecondsastimestring", {Variant(59)}));
    EXPECT_EQ(L"0:00:59", textOf(V_BSTR(&result)));
}

TEST_F(LateBound, arguments_are_converted) {
    EXPECT_EQ(S_OK, call(L"GetSecondsAsTimeString", {Variant(L"59")}));
    EXPECT_EQ(L"0:00:59", textOf(V_BSTR(&result)));
}

TEST_F(LateBound, a_property_is_written_and_read) {
    EXPECT_EQ(S_OK, put(L"Tag_Title", Variant(L"A song")));
    EXPECT_EQ(S_OK, call(L"Tag_Title"));
    EXPECT_EQ(L"A song", textOf(V_BSTR(&result)));
}

TEST_F(LateBound, a_read_only_property_cannot_be_written) {
    EXPECT_TRUE(FAILED(put(L"Info_Bitrate", Variant(1))));
}

TEST_F(LateBound, an_unknown_name_is_refused) {
    EXPECT_EQ(DISP_E_UNKNOWNNAME, call(L"PlayBackwards"));
}

TEST_F(LateBound, an_unknown_id_is_refused) {
    DISPPARAMS none{};
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND, invoke(4711, IID_NULL, DISPATCH_METHOD, &none));
}

TEST_F(LateBound, a_wrong_number_of_arguments_is_refused) {
    EXPECT_TRUE(FAILED(call(L"GetSecondsAsTimeString")));
    EXPECT_TRUE(FAILED(call(L"GetSecondsAsTimeString", {Variant(1), Variant(2)})));
    EXPECT_TRUE(FAILED(call(L"PlayStart", {Variant(L"x.wav")})));
    EXPECT_TRUE(FAILED(call(L"PlayPause", {Variant(1)})));
}

TEST_F(LateBound, an_argument_that_is_no_number_is_refused) {
    EXPECT_TRUE(FAILED(call(L"GetSecondsAsTimeString", {Variant(L"soon")})));
}

TEST_F(LateBound, broken_parameters_are_refused) {
    const DISPID id = idOf(L"PlayPause");
    EXPECT_TRUE(FAILED(invoke(id, IID_NULL, DISPATCH_METHOD, nullptr)));
    DISPPARAMS lost{nullptr, nullptr, 3, 0};
    EXPECT_TRUE(FAILED(invoke(id, IID_NULL, DISPATCH_METHOD, &lost)));
    DISPPARAMS unnamed{nullptr, nullptr, 0, 2};
    EXPECT_TRUE(FAILED(invoke(id, IID_NULL, DISPATCH_METHOD, &unnamed)));
}

TEST_F(LateBound, the_reserved_identifier_must_be_null) {
    DISPPARAMS none{};
    EXPECT_EQ(DISP_E_UNKNOWNINTERFACE,
              invoke(idOf(L"PlayPause"), IID_IDispatch, DISPATCH_METHOD, &none));
    wchar_t name[] = L"Init";
    wchar_t* names = name;
    DISPID id = 0;
    EXPECT_EQ(DISP_E_UNKNOWNINTERFACE,
              player->GetIDsOfNames(IID_IDispatch, &names, 1, LOCALE_USER_DEFAULT, &id));
}

TEST_F(LateBound, null_pointers_to_the_dispatch_itself_are_refused) {
    DISPID id = 0;
    wchar_t* missing = nullptr;
    EXPECT_EQ(E_POINTER, player->GetTypeInfoCount(nullptr));
    EXPECT_EQ(E_POINTER, player->GetTypeInfo(0, 0, nullptr));
    EXPECT_EQ(E_POINTER, player->GetIDsOfNames(IID_NULL, nullptr, 1, 0, &id));
    EXPECT_EQ(E_INVALIDARG, player->GetIDsOfNames(IID_NULL, &missing, 1, 0, &id));
    ComPtr<ITypeInfo> info;
    EXPECT_EQ(DISP_E_BADINDEX, player->GetTypeInfo(1, 0, info.put()));
}

TEST_F(LateBound, info_without_a_file_raises_object_not_set) {
    for (const wchar_t* name : {L"Info_Bitrate", L"Info_BitsPerSample", L"Info_Channels",
                                L"Info_Duration", L"Info_Samplerate"}) {
        exception = {};
        EXPECT_EQ(DISP_E_EXCEPTION, call(name));
        EXPECT_EQ(static_cast<HRESULT>(0x800A005B), exception.scode);
        EXPECT_EQ(L"Object variable or With block variable not set",
                  textOf(exception.bstrDescription));
        EXPECT_EQ(L"Corvina.cPlayer", textOf(exception.bstrSource));
        ::SysFreeString(exception.bstrDescription);
        ::SysFreeString(exception.bstrSource);
    }
}

TEST_F(LateBound, a_call_that_succeeds_leaves_no_old_error_behind) {
    call(L"Info_Bitrate");
    ::SysFreeString(exception.bstrDescription);
    ::SysFreeString(exception.bstrSource);
    call(L"PositionGet");
    ComPtr<IErrorInfo> old;
    EXPECT_EQ(S_FALSE, ::GetErrorInfo(0, old.put()));
}

// The published identifiers of the two records.
constexpr GUID deviceRecord{
    0xc687d9f0, 0x726c, 0x4027, {0xb2, 0xe3, 0x29, 0x0d, 0x07, 0xa4, 0x0b, 0x61}};
constexpr GUID waveRecord{
    0xcf2f8737, 0xfa80, 0x49d4, {0xa7, 0xf7, 0xe4, 0xb7, 0xb2, 0x1d, 0x1e, 0xdf}};

// The record of the registered library, as a host makes it.
class DeviceRecord : public LateBound {
protected:
    void SetUp() override {
        LateBound::SetUp();
        ASSERT_EQ(S_OK, ::GetRecordInfoFromGuids(LIBID_Corvina, 1, 0, 0, deviceRecord, info.put()));
    }
    void TearDown() override {
        ::SysFreeString(details.DeviceName);
        ::SysFreeString(details.DeviceDriver);
        info.reset();
        LateBound::TearDown();
    }

    HRESULT describe(long index, long direction, VARTYPE type = VT_RECORD | VT_BYREF) {
        VARIANT arguments[3]{};
        V_VT(&arguments[2]) = VT_I4;
        V_I4(&arguments[2]) = index;
        V_VT(&arguments[1]) = VT_I4;
        V_I4(&arguments[1]) = direction;
        V_VT(&arguments[0]) = type;
        V_RECORD(&arguments[0]) = &details;
        V_RECORDINFO(&arguments[0]) = info.get();
        DISPPARAMS parameters{arguments, nullptr, 3, 0};
        ::VariantClear(&result);
        return player->Invoke(30, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters,
                              &result, &exception, nullptr);
    }

    ComPtr<IRecordInfo> info;
    AudioDeviceDetails details{};
};

TEST_F(DeviceRecord, is_filled_in_a_late_bound_call) {
    EXPECT_EQ(S_OK, describe(9999, 2));
    EXPECT_EQ(VT_I4, V_VT(&result));
    EXPECT_EQ(badDeviceId, V_I4(&result));
    EXPECT_EQ(L"0", textOf(details.DeviceDriver));
}

TEST_F(DeviceRecord, may_be_given_without_a_reference) {
    EXPECT_EQ(S_OK, describe(9999, 2, VT_RECORD));
    EXPECT_EQ(L"0", textOf(details.DeviceDriver));
}

class NamedArguments : public DeviceRecord {
protected:
    // The members of GetDetailsDevice as a script names them, in the order that it writes them.
    HRESULT describeByName(std::vector<const wchar_t*> names, std::vector<Variant> positional) {
        std::vector<const wchar_t*> asked{L"GetDetailsDevice"};
        asked.insert(asked.end(), names.begin(), names.end());
        std::vector<DISPID> ids(asked.size());
        if (const HRESULT found = player->GetIDsOfNames(
                IID_NULL, const_cast<wchar_t**>(asked.data()), static_cast<UINT>(asked.size()),
                LOCALE_USER_DEFAULT, ids.data());
            FAILED(found))
            return found;
        std::vector<VARIANT> values;
        for (const wchar_t* name : names)
            values.push_back(valueOf(name));
        values.insert(values.end(), positional.rbegin(), positional.rend());
        DISPPARAMS parameters{values.data(), ids.data() + 1, static_cast<UINT>(values.size()),
                              static_cast<UINT>(names.size())};
        ::VariantClear(&result);
        return player->Invoke(ids[0], IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters,
                              &result, &exception, nullptr);
    }

private:
    VARIANT valueOf(const std::wstring& name) {
        VARIANT value{};
        if (name == L"DeviceDetails") {
            V_VT(&value) = VT_RECORD | VT_BYREF;
            V_RECORD(&value) = &details;
            V_RECORDINFO(&value) = info.get();
        } else {
            V_VT(&value) = VT_I4;
            V_I4(&value) = name == L"DeviceIndex" ? 9999 : 2;
        }
        return value;
    }
};

TEST_F(NamedArguments, may_come_in_any_order) {
    EXPECT_EQ(S_OK, describeByName({L"DeviceDetails", L"DeviceIndex", L"iInOut"}, {}));
    EXPECT_EQ(badDeviceId, V_I4(&result));
    EXPECT_EQ(L"0", textOf(details.DeviceDriver));
}

TEST_F(NamedArguments, may_follow_positional_ones) {
    EXPECT_EQ(S_OK, describeByName({L"DeviceDetails", L"iInOut"}, {Variant(9999)}));
    EXPECT_EQ(badDeviceId, V_I4(&result));
}

TEST_F(NamedArguments, given_twice_or_missing_are_refused) {
    EXPECT_TRUE(FAILED(describeByName({L"DeviceDetails", L"DeviceIndex"}, {Variant(1)})));
    EXPECT_TRUE(FAILED(describeByName({L"DeviceDetails"}, {Variant(1)})));
    EXPECT_TRUE(FAILED(describeByName({L"DeviceDetails"}, {Variant(1), Variant(2), Variant(3)})));
    EXPECT_EQ(nullptr, details.DeviceDriver);
}

TEST_F(DeviceRecord, frees_the_texts_it_held_before) {
    details.DeviceName = ::SysAllocString(L"old");
    EXPECT_EQ(S_OK, describe(9999, 2));
    EXPECT_EQ(L"", textOf(details.DeviceName));
}

TEST_F(DeviceRecord, of_another_type_is_refused) {
    ComPtr<IRecordInfo> other;
    ASSERT_EQ(S_OK, ::GetRecordInfoFromGuids(LIBID_Corvina, 1, 0, 0, waveRecord, other.put()));
    info = other;
    EXPECT_TRUE(FAILED(describe(0, 2)));
    EXPECT_EQ(nullptr, details.DeviceDriver);
}

TEST_F(DeviceRecord, must_be_a_record) {
    EXPECT_TRUE(FAILED(call(L"GetDetailsDevice", {Variant(0), Variant(2), Variant(7)})));
    EXPECT_TRUE(FAILED(call(L"GetDetailsDevice", {Variant(0)})));
}

} // namespace
