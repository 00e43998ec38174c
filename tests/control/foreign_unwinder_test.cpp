// A host that was built with MinGW holds the compiler's runtime DLL, which would take the exception
// tables of every later DLL for its own.

#include "Support.h"
#include "support/BareDecoders.h"
#include "support/TempFolder.h"

namespace corvina::test {
namespace {

class ForeignUnwinder : public ApartmentTest {
protected:
    static void SetUpTestSuite() {
        const std::string folder = CORVINA_RUNTIME_DLLS;
        ASSERT_TRUE(::SetDllDirectoryA(("Z:" + folder).c_str()));
        ASSERT_TRUE(::LoadLibraryA("libgcc_s_dw2-1.dll"));
        ::SetDllDirectoryA(nullptr);
    }
};

TEST_F(ForeignUnwinder, leaves_the_control_its_run_time_errors) {
    const auto player = create<_cPlayer>(CLSID_cPlayer);
    ASSERT_TRUE(player);
    long bitrate = 0;
    EXPECT_EQ(player->get_Info_Bitrate(&bitrate), static_cast<HRESULT>(0x800A005B));
}

TEST_F(ForeignUnwinder, leaves_the_APE_library_its_errors) {
    TempFolder folder;
    const std::wstring garbage = folder.write(L"garbage.ape", {1, 2, 3});
    using Create = std::int32_t(__stdcall*)(const char*, std::int32_t*);
    const auto create = exportOf<Create>("MACDll.dll", "c_APEDecompress_Create");
    EXPECT_EQ(create(toAnsi(garbage).text.c_str(), nullptr), 0);
}

} // namespace
} // namespace corvina::test
