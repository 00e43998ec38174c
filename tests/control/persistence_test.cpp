// A control kept in a stream, a storage and a property bag, and what damaged data does.

#include "Keeping.h"
#include "Meter.h"
#include "runtime/RuntimeError.h"

using namespace corvina;
using namespace corvina::test;

namespace {

class Persistence : public MeterTest {
protected:
    void TearDown() override {
        other.reset();
        MeterTest::TearDown();
    }

    void change() {
        meter->base().setProperty(Meter::level, 77);
        meter->base().setProperty(Meter::colour, -3);
        SIZEL size{1234, 567};
        as<IOleObject>(meter)->SetExtent(DVASPECT_CONTENT, &size);
    }
    void expectSame() {
        for (const int index : {Meter::level, Meter::colour, Meter::ticks})
            EXPECT_EQ(meter->base().property(index), other->base().property(index)) << index;
        SIZEL size{};
        as<IOleObject>(other)->GetExtent(DVASPECT_CONTENT, &size);
        EXPECT_EQ(1234, size.cx);
        EXPECT_EQ(567, size.cy);
    }
    void expectInitial(const ComPtr<Meter>& of) {
        EXPECT_EQ(25, of->base().property(Meter::level));
        EXPECT_EQ(0x00FF00, of->base().property(Meter::colour));
        EXPECT_EQ(10, of->base().property(Meter::ticks));
    }
    ComPtr<IStream> streamOf(std::initializer_list<std::int32_t> numbers) {
        auto stream = memoryStream();
        for (const std::int32_t number : numbers)
            stream->Write(&number, sizeof number, nullptr);
        rewind(stream);
        return stream;
    }

    static constexpr std::int32_t signature = 0x31767243; // "Crv1"
    ComPtr<Meter> other = makeCom<Meter>();
};

TEST_F(Persistence, a_new_control_has_its_initial_values) {
    change();
    EXPECT_EQ(S_OK, as<IPersistStreamInit>(meter)->InitNew());
    expectInitial(meter);
}

TEST_F(Persistence, a_stream_brings_everything_back) {
    change();
    const auto stream = memoryStream();
    ASSERT_EQ(S_OK, as<IPersistStreamInit>(meter)->Save(stream.get(), TRUE));
    rewind(stream);
    ASSERT_EQ(S_OK, as<IPersistStreamInit>(other)->Load(stream.get()));
    expectSame();
}

TEST_F(Persistence, a_stream_is_as_long_as_was_said) {
    const auto stream = memoryStream();
    ULARGE_INTEGER said{}, written{};
    EXPECT_EQ(S_OK, as<IPersistStreamInit>(meter)->GetSizeMax(&said));
    as<IPersistStreamInit>(meter)->Save(stream.get(), TRUE);
    stream->Seek({}, STREAM_SEEK_CUR, &written);
    EXPECT_EQ(said.QuadPart, written.QuadPart);
}

TEST_F(Persistence, a_storage_brings_everything_back) {
    change();
    const auto storage = memoryStorage();
    ASSERT_EQ(S_OK, as<IPersistStorage>(meter)->Save(storage.get(), TRUE));
    EXPECT_EQ(S_OK, as<IPersistStorage>(meter)->SaveCompleted(nullptr));
    ASSERT_EQ(S_OK, as<IPersistStorage>(other)->Load(storage.get()));
    expectSame();
    EXPECT_EQ(S_OK, as<IPersistStorage>(other)->HandsOffStorage());
}

TEST_F(Persistence, a_property_bag_brings_everything_back) {
    change();
    Bag bag;
    ASSERT_EQ(S_OK, as<IPersistPropertyBag>(meter)->Save(&bag, TRUE, FALSE));
    ASSERT_EQ(S_OK, as<IPersistPropertyBag>(other)->Load(&bag, nullptr));
    expectSame();
}

TEST_F(Persistence, values_are_kept_under_their_names) {
    change();
    Bag bag;
    as<IPersistPropertyBag>(meter)->Save(&bag, TRUE, FALSE);
    ASSERT_TRUE(bag.has(L"Level"));
    EXPECT_EQ(77, V_I4(&bag.values.at(L"Level")));
}

TEST_F(Persistence, initial_values_are_not_written_into_a_bag) {
    Bag bag;
    as<IPersistPropertyBag>(meter)->Save(&bag, TRUE, FALSE);
    EXPECT_FALSE(bag.has(L"Level"));
    EXPECT_FALSE(bag.has(L"Ticks"));
}

TEST_F(Persistence, all_values_are_written_into_a_bag_that_asks_for_all) {
    Bag bag;
    as<IPersistPropertyBag>(meter)->Save(&bag, TRUE, TRUE);
    EXPECT_TRUE(bag.has(L"Level"));
    EXPECT_TRUE(bag.has(L"Ticks"));
}

TEST_F(Persistence, what_is_missing_in_a_bag_gets_its_initial_value) {
    change();
    Bag bag;
    bag.put(L"Ticks", Variant(3));
    ASSERT_EQ(S_OK, as<IPersistPropertyBag>(meter)->Load(&bag, nullptr));
    EXPECT_EQ(25, meter->base().property(Meter::level));
    EXPECT_EQ(3, meter->base().property(Meter::ticks));
}

TEST_F(Persistence, texts_that_are_numbers_are_taken_from_a_bag) {
    Bag bag;
    bag.put(L"Ticks", Variant(L"12"));
    ASSERT_EQ(S_OK, as<IPersistPropertyBag>(meter)->Load(&bag, nullptr));
    EXPECT_EQ(12, meter->base().property(Meter::ticks));
}

TEST_F(Persistence, values_of_no_use_in_a_bag_get_their_initial_value) {
    Bag bag;
    bag.put(L"Ticks", Variant(L"many"));
    bag.put(L"Level", Variant(1000));
    ASSERT_EQ(S_OK, as<IPersistPropertyBag>(meter)->Load(&bag, nullptr));
    expectInitial(meter);
}

TEST_F(Persistence, negative_extents_in_a_bag_are_passed_over) {
    Bag bag;
    bag.put(L"_ExtentX", Variant(-5));
    bag.put(L"_ExtentY", Variant(500));
    ASSERT_EQ(S_OK, as<IPersistPropertyBag>(meter)->Load(&bag, nullptr));
    SIZEL size{};
    as<IOleObject>(meter)->GetExtent(DVASPECT_CONTENT, &size);
    EXPECT_EQ(himetricFromPixels({200, 100}).cx, size.cx);
}

TEST_F(Persistence, a_bag_that_cannot_be_written_says_so) {
    Bag bag;
    bag.writeResult = E_ACCESSDENIED;
    EXPECT_EQ(E_ACCESSDENIED, as<IPersistPropertyBag>(meter)->Save(&bag, TRUE, TRUE));
}

TEST_F(Persistence, an_empty_stream_is_refused_and_leaves_initial_values) {
    change();
    EXPECT_TRUE(FAILED(as<IPersistStreamInit>(meter)->Load(memoryStream().get())));
    expectInitial(meter);
}

TEST_F(Persistence, a_foreign_stream_is_refused) {
    EXPECT_TRUE(FAILED(as<IPersistStreamInit>(meter)->Load(streamOf({1, 2, 3, 4, 5, 6, 7}).get())));
    expectInitial(meter);
}

TEST_F(Persistence, a_truncated_stream_is_refused_and_leaves_initial_values) {
    EXPECT_TRUE(FAILED(
        as<IPersistStreamInit>(meter)->Load(streamOf({signature, 10, 10, 3, 50, 60}).get())));
    expectInitial(meter);
}

TEST_F(Persistence, a_stream_that_lies_about_its_length_is_refused) {
    EXPECT_TRUE(
        FAILED(as<IPersistStreamInit>(meter)->Load(streamOf({signature, 10, 10, -1, 50}).get())));
    expectInitial(meter);
}

TEST_F(Persistence, a_shorter_stream_of_an_older_version_leaves_the_rest_initial) {
    ASSERT_EQ(S_OK,
              as<IPersistStreamInit>(meter)->Load(streamOf({signature, 10, 10, 1, 50}).get()));
    EXPECT_EQ(50, meter->base().property(Meter::level));
    EXPECT_EQ(10, meter->base().property(Meter::ticks));
}

TEST_F(Persistence, a_longer_stream_of_a_newer_version_is_read_as_far_as_known) {
    ASSERT_EQ(S_OK, as<IPersistStreamInit>(meter)->Load(
                        streamOf({signature, 10, 10, 5, 50, 1, 2, 3, 4}).get()));
    EXPECT_EQ(2, meter->base().property(Meter::ticks));
}

TEST_F(Persistence, a_value_that_is_refused_gets_its_initial_value) {
    ASSERT_EQ(S_OK, as<IPersistStreamInit>(meter)->Load(
                        streamOf({signature, 10, 10, 3, 101, 7, 8}).get()));
    EXPECT_EQ(25, meter->base().property(Meter::level));
    EXPECT_EQ(8, meter->base().property(Meter::ticks));
}

TEST_F(Persistence, a_control_is_dirty_from_a_change_to_the_next_save) {
    const auto stream = as<IPersistStreamInit>(meter);
    EXPECT_EQ(S_FALSE, stream->IsDirty());
    meter->base().setProperty(Meter::level, 1);
    EXPECT_EQ(S_OK, stream->IsDirty());
    stream->Save(memoryStream().get(), FALSE);
    EXPECT_EQ(S_OK, stream->IsDirty());
    stream->Save(memoryStream().get(), TRUE);
    EXPECT_EQ(S_FALSE, stream->IsDirty());
}

TEST_F(Persistence, a_refused_value_raises_invalid_property_value) {
    try {
        meter->base().setProperty(Meter::level, 101);
        FAIL();
    } catch (const RuntimeError& error) {
        EXPECT_EQ(380, error.number());
    }
}

TEST_F(Persistence, the_control_hears_that_it_was_loaded) {
    as<IPersistStreamInit>(meter)->InitNew();
    EXPECT_EQ(1, meter->reloaded);
}

TEST_F(Persistence, the_class_id_is_told) {
    CLSID clsid{};
    EXPECT_EQ(S_OK, as<IPersistStorage>(meter)->GetClassID(&clsid));
    EXPECT_EQ(CLSID_cAudioGraph, clsid);
    EXPECT_EQ(E_POINTER, as<IPersistStorage>(meter)->GetClassID(nullptr));
}

TEST_F(Persistence, null_pointers_are_refused) {
    const auto stream = as<IPersistStreamInit>(meter);
    EXPECT_EQ(E_POINTER, stream->Load(nullptr));
    EXPECT_EQ(E_POINTER, stream->Save(nullptr, TRUE));
    EXPECT_EQ(E_POINTER, stream->GetSizeMax(nullptr));
    const auto bag = as<IPersistPropertyBag>(meter);
    EXPECT_EQ(E_POINTER, bag->Load(nullptr, nullptr));
    EXPECT_EQ(E_POINTER, bag->Save(nullptr, TRUE, TRUE));
    const auto storage = as<IPersistStorage>(meter);
    EXPECT_EQ(E_POINTER, storage->InitNew(nullptr));
    EXPECT_EQ(E_POINTER, storage->Load(nullptr));
    EXPECT_EQ(E_POINTER, storage->Save(nullptr, TRUE));
}

} // namespace
