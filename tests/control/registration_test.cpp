// What regsvr32 writes into the registry, and that it takes all of it away again.

#include "Support.h"
#include "platform/RegistryKey.h"

#include <set>

using namespace corvina;
using namespace corvina::test;

namespace {

const std::wstring player = L"CLSID\\{38604A89-7915-4ACE-91A0-1EB6D82D92B3}";
const std::wstring graph = L"CLSID\\{1BF4D8EB-FE35-495D-86F8-9A0675E9538C}";
const std::wstring front = L"CLSID\\{2D1CFBE8-9C07-4594-B933-DDEE6C06AE18}";
const std::wstring libraryId = L"{571663B9-3AB5-4B9A-900E-7BA18431BC3F}";

struct RegisteredControl {
    std::wstring key;
    int bitmap;
    DWORD status; // of OLEMISC
};
constexpr DWORD statusOfGraph = OLEMISC_RECOMPOSEONRESIZE | OLEMISC_CANTLINKINSIDE |
                                OLEMISC_INSIDEOUT | OLEMISC_ACTIVATEWHENVISIBLE |
                                OLEMISC_SETCLIENTSITEFIRST;
constexpr DWORD statusOfPlayer = statusOfGraph | OLEMISC_INVISIBLEATRUNTIME | OLEMISC_NOUIACTIVATE;
const RegisteredControl controls[] = {{.key = player, .bitmap = 101, .status = statusOfPlayer},
                                      {.key = graph, .bitmap = 102, .status = statusOfGraph}};

// What an object says about its class.
DWORD statusOf(REFCLSID clsid) {
    DWORD status = 0;
    EXPECT_EQ(S_OK, create<IOleObject>(clsid)->GetMiscStatus(DVASPECT_CONTENT, &status));
    return status;
}

// A text below Software\Classes of the machine or the user; "<none>" if there is no such key.
std::wstring read(const std::wstring& key, const wchar_t* name = nullptr,
                  HKEY root = HKEY_LOCAL_MACHINE) {
    wchar_t text[1024]{};
    DWORD bytes = sizeof text;
    const LSTATUS got = ::RegGetValueW(root, (L"Software\\Classes\\" + key).c_str(), name,
                                       RRF_RT_REG_SZ, nullptr, text, &bytes);
    return got == ERROR_SUCCESS ? text : L"<none>";
}

bool exists(const std::wstring& key, HKEY root = HKEY_LOCAL_MACHINE) {
    RegistryKey opened;
    return ::RegOpenKeyExW(root, (L"Software\\Classes\\" + key).c_str(), 0, KEY_READ,
                           opened.put()) == ERROR_SUCCESS;
}

// The names of every key directly below Software\Classes\parent.
std::set<std::wstring> keysBelow(const std::wstring& parent) {
    std::set<std::wstring> result;
    RegistryKey opened;
    if (::RegOpenKeyExW(HKEY_LOCAL_MACHINE, (L"Software\\Classes" + parent).c_str(), 0, KEY_READ,
                        opened.put()) != ERROR_SUCCESS)
        return result;
    wchar_t name[256];
    for (DWORD i = 0, length = 256; ::RegEnumKeyExW(opened.get(), i, name, &length, nullptr,
                                                    nullptr, nullptr, nullptr) == ERROR_SUCCESS;
         ++i, length = 256)
        result.insert(name);
    return result;
}

// What the registry or an activation context says about a class.
DWORD registeredStatus(REFCLSID clsid) {
    DWORD status = 0;
    EXPECT_EQ(S_OK, ::OleRegGetMiscStatus(clsid, DVASPECT_CONTENT, &status));
    return status;
}

// The library is registered before and after each test.
class Registration : public ::testing::Test {
protected:
    void TearDown() override { ASSERT_EQ(0, regsvr32(L"/s")); }
};

TEST_F(Registration, regsvr32_succeeds_and_succeeds_again) {
    EXPECT_EQ(0, regsvr32(L"/s"));
    EXPECT_EQ(0, regsvr32(L"/s"));
}

TEST_F(Registration, the_server_is_this_file_in_an_apartment) {
    EXPECT_EQ(libraryPath(), read(player + L"\\InprocServer32"));
    EXPECT_EQ(L"Apartment", read(player + L"\\InprocServer32", L"ThreadingModel"));
}

TEST_F(Registration, the_names_lead_to_the_class_and_back) {
    EXPECT_EQ(L"Corvina.cPlayer.1", read(player + L"\\ProgID"));
    EXPECT_EQ(L"Corvina.cPlayer", read(player + L"\\VersionIndependentProgID"));
    CLSID found{};
    EXPECT_EQ(S_OK, ::CLSIDFromProgID(L"Corvina.cPlayer", &found));
    EXPECT_EQ(CLSID_cPlayer, found);
    EXPECT_EQ(S_OK, ::CLSIDFromProgID(L"Corvina.cPlayer.1", &found));
    EXPECT_EQ(CLSID_cPlayer, found);
    EXPECT_EQ(L"Corvina.cPlayer.1", read(L"Corvina.cPlayer\\CurVer"));
    EXPECT_EQ(S_OK, ::CLSIDFromProgID(L"Corvina.GSubclass", &found));
    EXPECT_EQ(CLSID_GSubclass, found);
}

TEST_F(Registration, the_class_names_its_type_library_and_version) {
    EXPECT_EQ(libraryId, read(player + L"\\TypeLib"));
    EXPECT_EQ(L"1.0", read(player + L"\\Version"));
}

TEST_F(Registration, a_control_is_marked_as_a_control) {
    for (const auto& [key, bitmap, status] : controls) {
        SCOPED_TRACE(bitmap);
        EXPECT_TRUE(exists(key + L"\\Control"));
        EXPECT_TRUE(exists(key + L"\\Programmable"));
        EXPECT_TRUE(
            exists(key + L"\\Implemented Categories\\{40FC6ED4-2438-11CF-A3DB-080036F12502}"));
        EXPECT_EQ(std::to_wstring(status), read(key + L"\\MiscStatus\\1"));
        EXPECT_EQ(libraryPath() + L", " + std::to_wstring(bitmap),
                  read(key + L"\\ToolboxBitmap32"));
    }
}

TEST_F(Registration, the_controls_say_the_same_about_themselves) {
    ::CoInitialize(nullptr);
    EXPECT_EQ(statusOfPlayer, statusOf(CLSID_cPlayer));
    EXPECT_EQ(statusOfGraph, statusOf(CLSID_cAudioGraph));
    ::CoUninitialize();
}

TEST_F(Registration, the_subclassing_front_is_no_control) {
    EXPECT_EQ(libraryPath(), read(front + L"\\InprocServer32"));
    EXPECT_FALSE(exists(front + L"\\Control"));
    EXPECT_FALSE(exists(front + L"\\MiscStatus"));
}

TEST_F(Registration, the_toolbox_bitmap_can_be_loaded) {
    const HMODULE library =
        ::LoadLibraryExW(libraryPath().c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    ASSERT_NE(nullptr, library);
    for (const auto& [key, number, status] : controls) {
        SCOPED_TRACE(number);
        const HBITMAP bitmap = ::LoadBitmapW(library, MAKEINTRESOURCEW(number));
        BITMAP description{};
        EXPECT_NE(0, ::GetObjectW(bitmap, sizeof description, &description));
        EXPECT_EQ(16, description.bmWidth);
        EXPECT_EQ(16, description.bmHeight);
        ::DeleteObject(bitmap);
    }
    ::FreeLibrary(library);
}

TEST_F(Registration, the_status_in_the_registry_is_the_controls_own) {
    ::CoInitialize(nullptr);
    {
        const auto object = create<IOleObject>(CLSID_cPlayer);
        DWORD status = 0;
        EXPECT_EQ(S_OK, object->GetMiscStatus(DVASPECT_CONTENT, &status));
        EXPECT_EQ(read(player + L"\\MiscStatus\\1"), std::to_wstring(status));
    }
    ::CoUninitialize();
}

TEST_F(Registration, the_type_library_and_its_interfaces_are_registered) {
    EXPECT_EQ(libraryPath(), read(L"TypeLib\\" + libraryId + L"\\1.0\\0\\win32"));
    EXPECT_EQ(L"_cPlayer", read(L"Interface\\{EDD758A9-B719-4C2C-8AC9-3BF1C7434DF7}"));
    EXPECT_EQ(libraryId, read(L"Interface\\{EDD758A9-B719-4C2C-8AC9-3BF1C7434DF7}\\TypeLib"));
}

TEST_F(Registration, unregistering_leaves_the_registry_as_it_was) {
    ASSERT_EQ(0, regsvr32(L"/s /u"));
    const auto classes = keysBelow(L""), ids = keysBelow(L"\\CLSID"),
               libraries = keysBelow(L"\\TypeLib"), interfaces = keysBelow(L"\\Interface");
    ASSERT_EQ(0, regsvr32(L"/s"));
    EXPECT_NE(classes, keysBelow(L""));
    EXPECT_NE(interfaces, keysBelow(L"\\Interface"));
    ASSERT_EQ(0, regsvr32(L"/s /u"));
    EXPECT_EQ(classes, keysBelow(L""));
    EXPECT_EQ(ids, keysBelow(L"\\CLSID"));
    EXPECT_EQ(libraries, keysBelow(L"\\TypeLib"));
    EXPECT_EQ(interfaces, keysBelow(L"\\Interface"));
}

TEST_F(Registration, after_unregistering_nothing_names_the_library) {
    ASSERT_EQ(0, regsvr32(L"/s /u"));
    for (const auto& key :
         {player, front, std::wstring(L"Corvina.cPlayer"), std::wstring(L"Corvina.cPlayer.1"),
          std::wstring(L"Corvina.GSubclass"), L"TypeLib\\" + libraryId,
          std::wstring(L"Interface\\{EDD758A9-B719-4C2C-8AC9-3BF1C7434DF7}"),
          std::wstring(L"Interface\\{02D68996-3A43-464D-AEA2-E18E58BAD704}")})
        EXPECT_FALSE(exists(key)) << ::testing::PrintToString(key);
}

TEST_F(Registration, unregistering_what_is_not_registered_succeeds) {
    ASSERT_EQ(0, regsvr32(L"/s /u"));
    EXPECT_EQ(0, regsvr32(L"/s /u"));
}

TEST_F(Registration, a_user_can_register_for_himself_and_take_it_back) {
    ASSERT_EQ(0, regsvr32(L"/s /n /i:user"));
    EXPECT_EQ(libraryPath(), read(player + L"\\InprocServer32", nullptr, HKEY_CURRENT_USER));
    ASSERT_EQ(0, regsvr32(L"/s /u /n /i:user"));
    EXPECT_FALSE(exists(player, HKEY_CURRENT_USER));
    EXPECT_FALSE(exists(L"Corvina.cPlayer", HKEY_CURRENT_USER));
    EXPECT_FALSE(exists(L"TypeLib\\" + libraryId, HKEY_CURRENT_USER));
}

TEST_F(Registration, the_example_manifest_takes_the_place_of_the_registration) {
    ASSERT_EQ(0, regsvr32(L"/s /u"));
    // The build lays the manifest beside its own copy of the library, where its file is looked for.
    wchar_t manifest[MAX_PATH];
    ASSERT_NE(0u, ::GetFullPathNameW(L"..\\host.exe.manifest", MAX_PATH, manifest, nullptr));
    ACTCTXW description{};
    description.cbSize = sizeof description;
    description.lpSource = manifest;
    const HANDLE context = ::CreateActCtxW(&description);
    ASSERT_NE(INVALID_HANDLE_VALUE, context);
    ULONG_PTR cookie = 0;
    ASSERT_TRUE(::ActivateActCtx(context, &cookie));
    ::CoInitialize(nullptr);
    for (const wchar_t* progId :
         {L"Corvina.cPlayer", L"Corvina.cAudioGraph", L"Corvina.GSubclass", L"Corvina.cPlayer.1",
          L"Corvina.cAudioGraph.1", L"Corvina.GSubclass.1"}) {
        CLSID clsid{};
        EXPECT_EQ(S_OK, ::CLSIDFromProgID(progId, &clsid)) << progId;
        ComPtr<IUnknown> object;
        EXPECT_EQ(S_OK, ::CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                                           object.putVoid()));
    }
    EXPECT_EQ(statusOfPlayer, registeredStatus(CLSID_cPlayer));
    EXPECT_EQ(statusOfGraph, registeredStatus(CLSID_cAudioGraph));
    {
        const auto object = create<_cPlayer>(CLSID_cPlayer);
        ComPtr<IStream> forAnotherThread;
        EXPECT_EQ(S_OK, ::CoMarshalInterThreadInterfaceInStream(IID__cPlayer, object.get(),
                                                                forAnotherThread.put()));
        if (forAnotherThread)
            ::CoReleaseMarshalData(forAnotherThread.get());
    }
    ::CoUninitialize();
    ::DeactivateActCtx(0, cookie);
    ::ReleaseActCtx(context);
}

TEST_F(Registration, the_library_needs_nothing_but_system_libraries) {
    const HMODULE library = ::LoadLibraryW(libraryPath().c_str());
    ASSERT_NE(nullptr, library);
    auto* base = reinterpret_cast<const char*>(library);
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    const std::set<std::string> system{"ADVAPI32.DLL", "COMDLG32.DLL", "GDI32.DLL", "KERNEL32.DLL",
                                       "MSACM32.DLL",  "MSVCRT.DLL",   "OLE32.DLL", "OLEAUT32.DLL",
                                       "SHELL32.DLL",  "USER32.DLL",   "WINMM.DLL"};
    int imports = 0;
    for (const auto* each =
             reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
         each->Name != 0; ++each, ++imports) {
        std::string name = base + each->Name;
        for (char& c : name)
            c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        EXPECT_TRUE(system.contains(name)) << name;
    }
    EXPECT_GT(imports, 0);
    ::FreeLibrary(library);
}

TEST_F(Registration, the_file_carries_its_version) {
    DWORD unused = 0;
    const DWORD size = ::GetFileVersionInfoSizeW(libraryPath().c_str(), &unused);
    ASSERT_GT(size, 0u);
    std::vector<char> data(size);
    ASSERT_TRUE(::GetFileVersionInfoW(libraryPath().c_str(), 0, size, data.data()));
    wchar_t* text = nullptr;
    UINT length = 0;
    ASSERT_TRUE(::VerQueryValueW(data.data(), L"\\StringFileInfo\\040904B0\\ProductVersion",
                                 reinterpret_cast<void**>(&text), &length));
    const std::string version = CORVINA_VERSION;
    EXPECT_EQ(std::wstring(version.begin(), version.end()), text);
}

} // namespace
