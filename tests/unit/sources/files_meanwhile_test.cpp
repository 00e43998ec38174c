// What others do to a file before it is opened and while it plays.

#include "sources/DecAPE.h"
#include "sources/DecOGG.h"
#include "sources/DecSND.h"
#include "sources/DecWAV.h"
#include "support/FileBytes.h"
#include "support/Media.h"
#include "support/TempFolder.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>

namespace corvina::test {
namespace {

struct Format {
    const wchar_t* file;
    std::function<std::unique_ptr<cSoundSTRM>()> make;
    bool goesByExtension = false;
};

void PrintTo(const Format& format, std::ostream* stream) {
    for (const wchar_t* character = format.file; *character; ++character)
        *stream << static_cast<char>(*character);
}

template <typename Source>
Format format(const wchar_t* file, bool goesByExtension = false) {
    return {file, [] { return std::make_unique<Source>(); }, goesByExtension};
}

// Everybody else's handle, as lenient as can be.
class Neighbour {
public:
    Neighbour(const std::wstring& path, DWORD access, DWORD share)
        : file_(::CreateFileW(path.c_str(), access, share, nullptr, OPEN_EXISTING, 0, nullptr)) {}
    Neighbour(const Neighbour&) = delete;
    Neighbour& operator=(const Neighbour&) = delete;
    ~Neighbour() { ::CloseHandle(file_); }

    [[nodiscard]] bool opened() const { return file_ != INVALID_HANDLE_VALUE; }
    [[nodiscard]] bool lockAll() const { return ::LockFile(file_, 0, 0, 0x7FFFFFFF, 0) != 0; }
    void unlockAll() const { ::UnlockFile(file_, 0, 0, 0x7FFFFFFF, 0); }
    void cutTo(std::size_t bytes) const {
        ::SetFilePointer(file_, static_cast<LONG>(bytes), nullptr, FILE_BEGIN);
        ::SetEndOfFile(file_);
    }

private:
    HANDLE file_;
};

constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

class Meanwhile : public testing::TestWithParam<Format> {
protected:
    void openAndRead() {
        path_ = folder_.write(GetParam().file, bytes_);
        ASSERT_EQ(source_->OpenSource(path_), 0);
        EXPECT_GT(read(4000).size(), 0u);
    }

    Bytes read(std::int32_t count) {
        Bytes buffer(static_cast<std::size_t>(count));
        std::int32_t got = 0;
        last_ = source_->Read(buffer.data(), count, got);
        buffer.resize(static_cast<std::size_t>(std::max(got, std::int32_t{0})));
        return buffer;
    }

    // To the end, which must come.
    Bytes readRest() {
        Bytes all;
        last_ = 0;
        for (int reads = 0; last_ == 0 && reads < 10'000; ++reads) {
            const Bytes piece = read(8000);
            all.insert(all.end(), piece.begin(), piece.end());
        }
        EXPECT_EQ(last_, 5);
        return all;
    }

    void seek(std::int32_t percent) {
        std::int32_t mode = SeekMode::percent;
        source_->SeekTo(percent, mode);
    }

    TempFolder folder_;
    std::wstring path_;
    const Bytes bytes_ = fileBytes(mediaFile(GetParam().file));
    std::unique_ptr<cSoundSTRM> source_ = GetParam().make();
    std::int32_t last_ = 0;
};

INSTANTIATE_TEST_SUITE_P(Formats, Meanwhile,
                         testing::Values(format<DecWAV>(L"tune.wav"), format<DecOGG>(L"tune.ogg"),
                                         format<DecAPE>(L"tune.ape"), format<DecSND>(L"tune.au"),
                                         format<DecSND>(L"tune.aiff"),
                                         format<DecSND>(L"mono16.voc"),
                                         format<DecSND>(L"tune.vox", true)),
                         [](const auto& tested) {
                             const std::wstring name(tested.param.file);
                             const std::wstring extension = name.substr(name.find(L'.') + 1);
                             return std::string(extension.begin(), extension.end());
                         });

TEST_P(Meanwhile, a_file_that_somebody_else_holds_returns_1_until_it_is_let_go) {
    path_ = folder_.write(GetParam().file, bytes_);
    {
        const Neighbour holder(path_, GENERIC_READ, 0);
        ASSERT_TRUE(holder.opened());
        EXPECT_EQ(source_->OpenSource(path_), 1);
    }
    EXPECT_EQ(source_->OpenSource(path_), 0);
    source_->CloseSource();
}

TEST_P(Meanwhile, a_file_that_plays_cannot_be_deleted_and_plays_on) {
    ASSERT_EQ(source_->OpenSource(mediaFile(GetParam().file)), 0);
    (void)read(4000);
    const Bytes rest = readRest();
    source_->CloseSource();

    openAndRead();
    EXPECT_EQ(::DeleteFileW(path_.c_str()), 0);
    EXPECT_TRUE(readRest() == rest);
    source_->CloseSource();
    EXPECT_NE(::DeleteFileW(path_.c_str()), 0);
    EXPECT_EQ(source_->OpenSource(path_), 1);
}

TEST_P(Meanwhile, a_file_that_is_cut_while_it_plays_ends) {
    openAndRead();
    {
        const Neighbour editor(path_, GENERIC_WRITE, shareAll);
        if (editor.opened()) // some libraries let nobody write
            editor.cutTo(bytes_.size() / 4);
    }
    readRest();
    seek(50);
    readRest();
    source_->CloseSource();
    EXPECT_NE(::DeleteFileW(path_.c_str()), 0); // nobody has it any more
}

TEST_P(Meanwhile, a_file_that_is_locked_while_it_plays_ends_and_is_let_go) {
    openAndRead();
    {
        const Neighbour locker(path_, GENERIC_READ, shareAll);
        ASSERT_TRUE(locker.opened());
        EXPECT_TRUE(locker.lockAll());
        readRest();
        seek(50);
        readRest();
        locker.unlockAll();
    }
    source_->CloseSource();
    ASSERT_EQ(source_->OpenSource(path_), 0);
    EXPECT_GT(readRest().size(), 0u);
    source_->CloseSource();
    EXPECT_NE(::DeleteFileW(path_.c_str()), 0);
}

TEST_P(Meanwhile, its_name_may_end_in_anything_if_the_format_identifies_itself) {
    ASSERT_EQ(source_->OpenSource(mediaFile(GetParam().file)), 0);
    const Bytes sound = readRest();
    for (const wchar_t* name : {L"a.mp3", L"a.dat", L"a", L"a.WAV"}) {
        source_->CloseSource();
        const std::int32_t opened = source_->OpenSource(folder_.write(name, bytes_));
        EXPECT_EQ(opened, GetParam().goesByExtension ? 1 : 0);
        if (opened == 0) {
            EXPECT_TRUE(readRest() == sound);
        }
    }
    source_->CloseSource();
}

} // namespace
} // namespace corvina::test
