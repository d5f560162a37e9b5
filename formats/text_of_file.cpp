#include "formats/text_of_file.h"

#include "formats/remarks.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <system_error>

namespace tarnex::formats
{

std::string textOfFile(const std::filesystem::path &file, std::size_t atMost)
{
    const auto fail = [&] {
        throw InputError(file.string(), 0, 0, std::generic_category().message(errno));
    };
    errno = 0;
    std::ifstream in(file, std::ios::binary);
    if (!in)
        fail();
    std::string text;
    while (in && text.size() < atMost) {
        constexpr std::size_t blockSize = 1 << 16;
        const std::size_t before = text.size();
        text.resize(before + std::min(blockSize, atMost - before));
        in.read(text.data() + before, static_cast<std::streamsize>(text.size() - before));
        text.resize(before + static_cast<std::size_t>(in.gcount()));
    }
    if (in.bad()) // a folder can be opened, but not read
        fail();
    if (text.starts_with("\xef\xbb\xbf"))
        text.erase(0, 3);
    return text;
}

} // namespace tarnex::formats
