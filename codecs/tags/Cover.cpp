#include "Cover.h"

#include "sources/TagInterface.h"

#include <aifffile.h>
#include <apefile.h>
#include <apetag.h>
#include <asffile.h>
#include <asfpicture.h>
#include <attachedpictureframe.h>
#include <flacfile.h>
#include <flacpicture.h>
#include <id3v2tag.h>
#include <mp4file.h>
#include <mpegfile.h>
#include <wavfile.h>
#include <xiphcomment.h>

namespace corvina::tags {
namespace {

// Every format counts the kinds of pictures as ID3v2 does.
constexpr int frontCover = 3;

class Choice {
public:
    void offer(const TagLib::ByteVector& picture, int kind) {
        if (picture.isEmpty() || picture.size() > largestPictureBytes)
            return;
        if (chosen_.isEmpty() || (kind == frontCover && !front_)) {
            chosen_ = picture;
            front_ = kind == frontCover;
        }
    }
    [[nodiscard]] const TagLib::ByteVector& chosen() const { return chosen_; }

private:
    TagLib::ByteVector chosen_;
    bool front_ = false;
};

void offerAll(Choice& choice, const TagLib::ID3v2::Tag* tag) {
    if (!tag)
        return;
    for (const TagLib::ID3v2::Frame* frame : tag->frameList("APIC"))
        if (const auto* picture = dynamic_cast<const TagLib::ID3v2::AttachedPictureFrame*>(frame))
            choice.offer(picture->picture(), picture->type());
}

void offerAll(Choice& choice, const TagLib::List<TagLib::FLAC::Picture*>& pictures) {
    for (const TagLib::FLAC::Picture* picture : pictures)
        choice.offer(picture->data(), picture->type());
}

void offerAll(Choice& choice, TagLib::Ogg::XiphComment* tag) {
    if (tag)
        offerAll(choice, tag->pictureList());
}

void offerAll(Choice& choice, TagLib::MP4::Tag* tag) {
    if (!tag || !tag->contains("covr"))
        return;
    for (const TagLib::MP4::CoverArt& cover : tag->item("covr").toCoverArtList())
        choice.offer(cover.data(), frontCover);
}

void offerAll(Choice& choice, TagLib::ASF::Tag* tag) {
    if (!tag)
        return;
    for (const TagLib::ASF::Attribute& attribute : tag->attribute("WM/Picture"))
        if (const TagLib::ASF::Picture picture = attribute.toPicture(); picture.isValid())
            choice.offer(picture.picture(), picture.type());
}

// The value holds a file name, a byte of code 0 and the picture.
void offerItem(Choice& choice, const TagLib::APE::ItemListMap& items, const char* key, int kind) {
    const auto found = items.find(key);
    if (found == items.end() || found->second.type() != TagLib::APE::Item::Binary)
        return;
    const TagLib::ByteVector value = found->second.binaryData();
    const int end = value.find('\0');
    if (end >= 0)
        choice.offer(value.mid(static_cast<unsigned>(end) + 1), kind);
}

void offerAll(Choice& choice, const TagLib::APE::Tag* tag) {
    if (!tag)
        return;
    const TagLib::APE::ItemListMap& items = tag->itemListMap();
    offerItem(choice, items, "COVER ART (FRONT)", frontCover);
    offerItem(choice, items, "COVER ART (BACK)", 0);
}

} // namespace

TagLib::ByteVector coverOf(TagLib::File& file) {
    Choice choice;
    if (auto* mpeg = dynamic_cast<TagLib::MPEG::File*>(&file)) {
        offerAll(choice, mpeg->ID3v2Tag());
        offerAll(choice, mpeg->APETag());
    } else if (auto* flac = dynamic_cast<TagLib::FLAC::File*>(&file)) {
        offerAll(choice, flac->pictureList());
        offerAll(choice, flac->xiphComment());
        offerAll(choice, flac->ID3v2Tag());
    } else if (auto* wav = dynamic_cast<TagLib::RIFF::WAV::File*>(&file)) {
        offerAll(choice, wav->ID3v2Tag());
    } else if (auto* ape = dynamic_cast<TagLib::APE::File*>(&file)) {
        offerAll(choice, ape->APETag());
    } else {
        offerAll(choice, dynamic_cast<TagLib::ID3v2::Tag*>(file.tag()));
        offerAll(choice, dynamic_cast<TagLib::MP4::Tag*>(file.tag()));
        offerAll(choice, dynamic_cast<TagLib::ASF::Tag*>(file.tag()));
        offerAll(choice, dynamic_cast<TagLib::Ogg::XiphComment*>(file.tag()));
    }
    return choice.chosen();
}

} // namespace corvina::tags
