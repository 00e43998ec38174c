// The registered player saved and loaded again: its size is all that it saves.

#include "PersistenceDoubles.h"

using namespace corvina;
using namespace corvina::test;

namespace {

class PlayerPersistence : public ApartmentTest {
protected:
    void SetUp() override {
        ApartmentTest::SetUp();
        kept = create<_cPlayer>(CLSID_cPlayer);
        other = create<_cPlayer>(CLSID_cPlayer);
        ASSERT_TRUE(kept && other);
    }
    void TearDown() override {
        kept.reset();
        other.reset();
        ApartmentTest::TearDown();
    }

    ComPtr<_cPlayer> kept;
    ComPtr<_cPlayer> other;
};

TEST_F(PlayerPersistence, a_storage_takes_a_player_and_brings_it_back) {
    const auto storage = memoryStorage();
    EXPECT_EQ(S_OK, kept.query<IPersistStorage>()->Save(storage.get(), FALSE));
    EXPECT_EQ(S_OK, other.query<IPersistStorage>()->Load(storage.get()));
}

TEST_F(PlayerPersistence, a_stream_of_a_storage_takes_a_player_and_brings_it_back) {
    const auto storage = memoryStorage();
    ComPtr<IStream> stream;
    ASSERT_EQ(S_OK,
              storage->CreateStream(L"Player", STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE,
                                    0, 0, stream.put()));
    EXPECT_EQ(S_OK, kept.query<IPersistStreamInit>()->Save(stream.get(), TRUE));
    rewind(stream);
    EXPECT_EQ(S_OK, other.query<IPersistStreamInit>()->Load(stream.get()));
}

TEST_F(PlayerPersistence, a_property_bag_takes_a_player_and_brings_it_back) {
    MemoryPropertyBag bag;
    EXPECT_EQ(S_OK, kept.query<IPersistPropertyBag>()->Save(&bag, TRUE, TRUE));
    EXPECT_EQ(S_OK, other.query<IPersistPropertyBag>()->Load(&bag, nullptr));
}

} // namespace
