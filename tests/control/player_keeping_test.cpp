// The registered player kept and loaded again: it has a size and no other value to keep.

#include "Keeping.h"

using namespace corvina;
using namespace corvina::test;

namespace {

class PlayerKeeping : public ApartmentTest {
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

TEST_F(PlayerKeeping, a_storage_takes_a_player_and_brings_it_back) {
    const auto storage = memoryStorage();
    EXPECT_EQ(S_OK, kept.query<IPersistStorage>()->Save(storage.get(), FALSE));
    EXPECT_EQ(S_OK, other.query<IPersistStorage>()->Load(storage.get()));
}

TEST_F(PlayerKeeping, a_stream_of_a_storage_takes_a_player_and_brings_it_back) {
    const auto storage = memoryStorage();
    ComPtr<IStream> stream;
    ASSERT_EQ(S_OK,
              storage->CreateStream(L"Player", STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE,
                                    0, 0, stream.put()));
    EXPECT_EQ(S_OK, kept.query<IPersistStreamInit>()->Save(stream.get(), TRUE));
    rewind(stream);
    EXPECT_EQ(S_OK, other.query<IPersistStreamInit>()->Load(stream.get()));
}

TEST_F(PlayerKeeping, a_property_bag_takes_a_player_and_brings_it_back) {
    Bag bag;
    EXPECT_EQ(S_OK, kept.query<IPersistPropertyBag>()->Save(&bag, TRUE, TRUE));
    EXPECT_EQ(S_OK, other.query<IPersistPropertyBag>()->Load(&bag, nullptr));
}

} // namespace
