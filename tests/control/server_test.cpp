// The server's entry points: class objects, and when the library may be unloaded.

#include "Support.h"
#include "support/ProcessObjects.h"

#include <algorithm>
#include <cstring>
#include <limits>

using namespace corvina;
using namespace corvina::test;

namespace {

class Server : public ApartmentTest {
protected:
    void SetUp() override {
        ApartmentTest::SetUp();
        library = ::LoadLibraryW(libraryPath().c_str());
        ASSERT_NE(nullptr, library);
        getClassObject = procedure<decltype(getClassObject)>("DllGetClassObject");
        canUnloadNow = procedure<decltype(canUnloadNow)>("DllCanUnloadNow");
    }
    void TearDown() override {
        EXPECT_EQ(S_OK, canUnloadNow());
        EXPECT_TRUE(::FreeLibrary(library));
        ApartmentTest::TearDown();
    }

    template <typename Function>
    Function procedure(const char* name) {
        const FARPROC found = ::GetProcAddress(library, name);
        EXPECT_NE(nullptr, found) << name;
        Function result;
        std::memcpy(&result, &found, sizeof result);
        return result;
    }

    ComPtr<IClassFactory> factory(REFCLSID clsid) {
        ComPtr<IClassFactory> result;
        EXPECT_EQ(S_OK, getClassObject(clsid, IID_IClassFactory, result.putVoid()));
        return result;
    }

    HMODULE library = nullptr;
    HRESULT(WINAPI* getClassObject)(REFCLSID, REFIID, void**) = nullptr;
    HRESULT(WINAPI* canUnloadNow)() = nullptr;
};

TEST_F(Server, exports_its_five_entry_points_undecorated) {
    for (const char* name : {"DllGetClassObject", "DllCanUnloadNow", "DllRegisterServer",
                             "DllUnregisterServer", "DllInstall"})
        EXPECT_NE(nullptr, ::GetProcAddress(library, name)) << name;
}

TEST_F(Server, hands_out_a_factory_for_a_known_class_only) {
    void* result = this;
    EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE, getClassObject(IID_IUnknown, IID_IClassFactory, &result));
    EXPECT_EQ(nullptr, result);
    EXPECT_TRUE(factory(CLSID_cPlayer));
    EXPECT_TRUE(factory(CLSID_GSubclass));
}

TEST_F(Server, refuses_a_factory_by_a_foreign_interface) {
    void* result = this;
    EXPECT_EQ(E_NOINTERFACE, getClassObject(CLSID_cPlayer, IID_IDispatch, &result));
    EXPECT_EQ(nullptr, result);
    EXPECT_EQ(E_POINTER, getClassObject(CLSID_cPlayer, IID_IClassFactory, nullptr));
}

TEST_F(Server, refuses_to_aggregate_a_class_that_is_no_control) {
    const auto maker = factory(CLSID_GSubclass);
    void* result = this;
    EXPECT_EQ(CLASS_E_NOAGGREGATION, maker->CreateInstance(maker.get(), IID_IUnknown, &result));
    EXPECT_EQ(nullptr, result);
}

TEST_F(Server, aggregates_by_the_inner_unknown_alone) {
    const auto maker = factory(CLSID_cPlayer);
    void* result = this;
    EXPECT_EQ(CLASS_E_NOAGGREGATION, maker->CreateInstance(maker.get(), IID_IOleObject, &result));
    EXPECT_EQ(nullptr, result);
}

TEST_F(Server, refuses_an_object_by_a_foreign_interface) {
    void* result = this;
    EXPECT_EQ(E_NOINTERFACE,
              factory(CLSID_cPlayer)->CreateInstance(nullptr, IID_IClassFactory, &result));
    EXPECT_EQ(nullptr, result);
    EXPECT_EQ(E_POINTER, factory(CLSID_cPlayer)->CreateInstance(nullptr, IID_IUnknown, nullptr));
}

TEST_F(Server, stays_loaded_while_an_object_lives) {
    for (REFCLSID clsid : {CLSID_cPlayer, CLSID_GSubclass}) {
        ComPtr<IUnknown> object;
        EXPECT_EQ(S_OK, factory(clsid)->CreateInstance(nullptr, IID_IUnknown, object.putVoid()));
        EXPECT_EQ(S_FALSE, canUnloadNow());
        object.reset();
        EXPECT_EQ(S_OK, canUnloadNow());
    }
}

TEST_F(Server, stays_loaded_while_it_is_locked) {
    const auto maker = factory(CLSID_cPlayer);
    EXPECT_EQ(S_OK, maker->LockServer(TRUE));
    EXPECT_EQ(S_FALSE, canUnloadNow());
    EXPECT_EQ(S_OK, maker->LockServer(FALSE));
}

TEST_F(Server, stays_loaded_while_an_enumerator_lives) {
    ComPtr<IEnumOLEVERB> verbs;
    {
        ComPtr<IOleObject> object;
        ASSERT_EQ(
            S_OK,
            factory(CLSID_cPlayer)->CreateInstance(nullptr, IID_IOleObject, object.putVoid()));
        EXPECT_EQ(S_OK, object->EnumVerbs(verbs.put()));
    }
    EXPECT_EQ(S_FALSE, canUnloadNow());
}

TEST_F(Server, takes_its_window_class_along_when_it_is_unloaded) {
    {
        ComPtr<_cPlayer> player;
        ASSERT_EQ(S_OK,
                  factory(CLSID_cPlayer)->CreateInstance(nullptr, IID__cPlayer, player.putVoid()));
        long result = -1;
        EXPECT_EQ(S_OK, player->Init(&result));
    }
    WNDCLASSW found{};
    EXPECT_TRUE(::GetClassInfoW(library, L"CorvinaControl", &found));
    const HMODULE old = library;
    ::FreeLibrary(library);
    EXPECT_EQ(nullptr, ::GetModuleHandleW(L"Corvina.ocx"));
    EXPECT_FALSE(::GetClassInfoW(old, L"CorvinaControl", &found));
    SetUp();
    ::CoUninitialize(); // SetUp counted the apartment a second time
}

TEST_F(Server, two_hundred_objects_leave_nothing_behind) {
    const auto create = [&] {
        ComPtr<_cPlayer> player;
        factory(CLSID_cPlayer)->CreateInstance(nullptr, IID__cPlayer, player.putVoid());
        long result = -1;
        player->Init(&result);
    };
    create();
    const auto users = ::GetGuiResources(::GetCurrentProcess(), GR_USEROBJECTS);
    // The system takes handles of its own now and then; what the objects leave grows in each round.
    int leastGrowth = std::numeric_limits<int>::max();
    for (int round = 0; round < 4; ++round) {
        const int handles = countKernelHandles();
        for (int i = 0; i < 50; ++i)
            create();
        leastGrowth = std::min(leastGrowth, countKernelHandles() - handles);
    }
    EXPECT_EQ(users, ::GetGuiResources(::GetCurrentProcess(), GR_USEROBJECTS));
    EXPECT_LE(leastGrowth, 0);
}

// The C runtime and the loader keep a little of their own.
constexpr std::size_t mostLeftByALoad = 2048;

DWORD nextTlsIndex() {
    const DWORD index = ::TlsAlloc();
    ::TlsFree(index);
    return index;
}

// A process has about a thousand indexes of thread storage.
TEST_F(Server, loaded_for_an_error_and_unloaded_leaves_no_index_and_next_to_nothing_else) {
    const auto raiseAndUnload = [this] {
        {
            ComPtr<_cPlayer> player;
            factory(CLSID_cPlayer)->CreateInstance(nullptr, IID__cPlayer, player.putVoid());
            long bitrate = 0;
            EXPECT_EQ(static_cast<HRESULT>(0x800A005B), player->get_Info_Bitrate(&bitrate));
        }
        ::FreeLibrary(library);
        EXPECT_EQ(nullptr, ::GetModuleHandleW(L"Corvina.ocx"));
    };
    raiseAndUnload();
    // Wine's multimedia library keeps a dozen registry keys each time that it is unloaded.
    const HMODULE multimedia = ::LoadLibraryW(L"winmm.dll");
    const DWORD index = nextTlsIndex();
    const int handles = countKernelHandles();
    const std::size_t heap = countHeapBytes();
    for (int round = 0; round < 20; ++round) {
        SetUp();
        ::CoUninitialize(); // SetUp counted the apartment a second time
        raiseAndUnload();
    }
    EXPECT_EQ(nextTlsIndex(), index);
    // Two handles that the compiler's thread library takes at the first throw are out of reach.
    EXPECT_LE(countKernelHandles(), handles + 20 * 2);
    EXPECT_LE(countHeapBytes(), heap + 20 * mostLeftByALoad);
    ::FreeLibrary(multimedia);
    SetUp();
    ::CoUninitialize();
}

TEST_F(Server, decoder_library_that_is_loaded_and_unloaded_leaves_neither_handle_nor_memory) {
    const auto loadAndUnload = [] {
        const HMODULE decoder = ::LoadLibraryW(L"MACDll.dll");
        ASSERT_NE(decoder, nullptr);
        ::FreeLibrary(decoder);
        EXPECT_EQ(::GetModuleHandleW(L"MACDll.dll"), nullptr);
    };
    loadAndUnload();
    const int handles = countKernelHandles();
    const std::size_t heap = countHeapBytes();
    for (int round = 0; round < 20; ++round)
        loadAndUnload();
    EXPECT_LE(countKernelHandles(), handles + 2);
    EXPECT_LE(countHeapBytes(), heap + 20 * mostLeftByALoad);
}

} // namespace
