// The description behind late-bound calls, and what becomes of them without one.

#include "Support.h"
#include "com/Dispatch.h"
#include "support/ProcessObjects.h"

using namespace corvina;
using namespace corvina::test;

namespace {

// An interface of the system's, which the type library does not describe.
struct Undescribed : ApartmentTest {
    DispatchInfo info{IID_IStream};
};

TEST_F(Undescribed, has_no_description_and_says_so) {
    ITypeInfo* result = reinterpret_cast<ITypeInfo*>(0x1234);
    EXPECT_EQ(TYPE_E_ELEMENTNOTFOUND, info.typeInfo(0, &result));
    EXPECT_EQ(nullptr, result);
}

TEST_F(Undescribed, finds_no_names_and_calls_nothing) {
    wchar_t name[] = L"Read";
    LPOLESTR names = name;
    DISPID id = 7;
    EXPECT_EQ(TYPE_E_ELEMENTNOTFOUND, info.idsOfNames(IID_NULL, &names, 1, &id));
    EXPECT_EQ(DISPID_UNKNOWN, id);
    DISPPARAMS arguments{};
    EXPECT_EQ(TYPE_E_ELEMENTNOTFOUND, info.invoke(nullptr, 1, IID_NULL, DISPATCH_METHOD, &arguments,
                                                  nullptr, nullptr, nullptr));
}

class Described : public ApartmentTest {
protected:
    DispatchInfo info{IID__cPlayer};
};

TEST_F(Described, is_what_the_type_library_says_of_the_interface) {
    ComPtr<ITypeInfo> description;
    ASSERT_EQ(S_OK, info.typeInfo(0, description.put()));
    TYPEATTR* type = nullptr;
    ASSERT_EQ(S_OK, description->GetTypeAttr(&type));
    EXPECT_EQ(IID__cPlayer, type->guid);
    description->ReleaseTypeAttr(type);
}

TEST_F(Described, is_searched_for_properties_that_hold_objects_without_keeping_memory) {
    wchar_t name[] = L"Picture";
    LPOLESTR names = name;
    DISPID picture = DISPID_UNKNOWN;
    ASSERT_EQ(S_OK, info.idsOfNames(IID_NULL, &names, 1, &picture));
    VARIANT index{};
    V_VT(&index) = VT_I4;
    DISPPARAMS arguments{&index, nullptr, 1, 0};
    const auto askOften = [&] {
        for (int i = 0; i < 60; ++i)
            EXPECT_EQ(DISP_E_BADPARAMCOUNT,
                      info.invoke(nullptr, picture, IID_NULL, DISPATCH_PROPERTYGET, &arguments,
                                  nullptr, nullptr, nullptr));
    };
    askOften();
    const std::size_t before = countHeapBytes();
    askOften();
    EXPECT_LT(countHeapBytes(), before + 60 * sizeof(FUNCDESC) / 2);
}

} // namespace
