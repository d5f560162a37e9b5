#include "formats/write.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include <sys/stat.h>

namespace tarnex::formats
{

namespace
{

namespace fs = std::filesystem;

/** A folder of its own. */
class ReplaceFile : public testing::Test
{
protected:
    void SetUp() override
    {
        folder = fs::path(testing::TempDir()) /
                 (std::string("replace-") +
                  testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(folder);
        fs::create_directories(folder);
        file = folder / "plan.json";
    }
    void TearDown() override { fs::remove_all(folder); }

    static std::string contentOf(const fs::path &of)
    {
        std::ifstream in(of);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    std::size_t nbFiles() const
    {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), {}));
    }
    void write(const std::string &text) const
    {
        replaceFile(file, [&](std::ostream &out) { out << text; });
    }
    static void replaceFile(const fs::path &file, const std::function<void(std::ostream &)> &write)
    {
        replaceFiles(std::vector<FileToWrite>{{file, write}});
    }

    fs::path folder;
    fs::path file;
};

TEST_F(ReplaceFile, HasThePermissionsOfANewFileOrOfTheOldOne)
{
    const mode_t before = ::umask(027);
    write("one");
    ::umask(before);
    EXPECT_EQ(fs::status(file).permissions(), fs::perms(0640));
    fs::permissions(file, fs::perms(0604));
    write("two");
    EXPECT_EQ(contentOf(file), "two");
    EXPECT_EQ(fs::status(file).permissions(), fs::perms(0604));
    EXPECT_EQ(nbFiles(), 1U);
}

TEST_F(ReplaceFile, LeavesWhatWasThereWhenWritingFails)
{
    write("old");
    const auto stop = [](std::ostream &out) {
        out << "half" << std::flush;
        throw std::runtime_error("stop");
    };
    EXPECT_THROW(replaceFile(file, stop), std::runtime_error);
    EXPECT_THROW(replaceFile(file, [](std::ostream &out) { out.setstate(std::ios::badbit); }),
                 std::system_error);
    EXPECT_EQ(contentOf(file), "old");
    EXPECT_EQ(nbFiles(), 1U);
    EXPECT_THROW(replaceFile(folder / "none" / "x", stop), std::system_error);
    EXPECT_THROW(replaceFile(folder, stop), std::system_error);
}

TEST_F(ReplaceFile, ReplacesAllFilesOrNone)
{
    write("old");
    const auto one = [](std::ostream &out) { out << "new"; };
    const auto stop = [](std::ostream & /*out*/) { throw std::runtime_error("stop"); };
    EXPECT_THROW(replaceFiles(std::vector<FileToWrite>{{file, one}, {folder / "b", stop}}),
                 std::runtime_error);
    EXPECT_EQ(contentOf(file), "old");
    EXPECT_EQ(nbFiles(), 1U);
    replaceFiles(std::vector<FileToWrite>{{file, one}, {folder / "b", one}});
    EXPECT_EQ(contentOf(file) + contentOf(folder / "b"), "newnew");
    EXPECT_EQ(nbFiles(), 2U);
}

TEST_F(ReplaceFile, NamesTheFileAndTheReasonWhenTheDiskIsFull)
{
    for (const bool throws : {false, true})
        try {
            replaceFile("/dev/full", [throws](std::ostream &out) {
                if (throws)
                    out.exceptions(std::ios::badbit);
                out << std::string(100'000, 'x');
            });
            FAIL() << "written";
        } catch (const std::system_error &error) {
            EXPECT_STREQ(error.what(), "cannot write /dev/full: No space left on device");
        }
}

TEST_F(ReplaceFile, FollowsLinksAndLeavesDevicesAlone)
{
    write("old");
    fs::create_symlink("plan.json", folder / "link");
    replaceFile(folder / "link", [](std::ostream &out) { out << "new"; });
    EXPECT_TRUE(fs::is_symlink(folder / "link"));
    EXPECT_EQ(contentOf(file), "new");
    replaceFile("/dev/null", [](std::ostream &out) { out << "gone"; });
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

} // namespace

} // namespace tarnex::formats
