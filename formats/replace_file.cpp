#include "formats/write.h"

#include <cerrno>
#include <deque>
#include <fstream>
#include <string>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarnex::formats
{

namespace
{

[[noreturn]] void fail(const std::filesystem::path &file, int error)
{
    throw std::system_error(error, std::generic_category(), "cannot write " + file.string());
}

/** A new file beside another. It is gone at the end of its scope unless it was renamed. */
class Neighbour
{
public:
    explicit Neighbour(std::filesystem::path of) : target(std::move(of))
    {
        for (int attempt = 0, made = -1; made < 0; ++attempt) {
            name = target.string() + "." + std::to_string(::getpid()) + "-" +
                   std::to_string(attempt) + ".tmp";
            made = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
            if (made >= 0)
                ::close(made);
            else if (errno != EEXIST)
                fail(target, errno);
        }
    }
    Neighbour(const Neighbour &) = delete;
    Neighbour &operator=(const Neighbour &) = delete;
    ~Neighbour()
    {
        if (!name.empty())
            ::unlink(name.c_str());
    }

    const std::string &path() const { return name; }

    /** A file that is replaced hands its permissions on. */
    void takePermissions() const
    {
        struct stat old {
        };
        if (::stat(target.c_str(), &old) == 0 && ::chmod(name.c_str(), old.st_mode & 07777U) != 0)
            fail(target, errno);
    }

    /** Brings the content to the disk, so that a crash does not leave the name without it. */
    void sync() const
    {
        const int file = ::open(name.c_str(), O_RDONLY | O_CLOEXEC);
        const int result = file < 0 ? -1 : ::fsync(file);
        const int error = errno;
        if (file >= 0)
            ::close(file);
        if (result != 0)
            fail(target, error);
    }

    void rename()
    {
        if (::rename(name.c_str(), target.c_str()) != 0)
            fail(target, errno);
        name.clear();
    }

private:
    std::filesystem::path target;
    std::string name;
};

/** What a link points to is replaced, not the link. */
std::filesystem::path followed(const std::filesystem::path &file)
{
    std::error_code none;
    const std::filesystem::path target = std::filesystem::canonical(file, none);
    return none ? file : target;
}

/** Writes to `name`, which stands for `file` in errors. */
void writeTo(const std::filesystem::path &name, const FileToWrite &file)
{
    errno = 0;
    std::ofstream out(name, std::ios::binary);
    bool isWritten = false;
    try {
        if (out)
            file.write(out);
        out.close();
        isWritten = out.good();
    } catch (const std::ios_base::failure &) {
        // It does not know the reason, errno does.
    }
    if (!isWritten)
        fail(file.file, errno != 0 ? errno : EIO);
}

bool isDevice(const std::filesystem::path &file)
{
    std::error_code none;
    return std::filesystem::exists(file, none) && !std::filesystem::is_regular_file(file, none);
}

} // namespace

void replaceFiles(std::span<const FileToWrite> files)
{
    std::deque<Neighbour> neighbours;
    for (const FileToWrite &file : files) {
        const std::filesystem::path target = followed(file.file);
        if (isDevice(target)) {
            writeTo(target, file); // a device or a pipe stays what it is
            continue;
        }
        const Neighbour &neighbour = neighbours.emplace_back(target);
        writeTo(neighbour.path(), file);
        neighbour.takePermissions();
        neighbour.sync();
    }
    for (Neighbour &neighbour : neighbours)
        neighbour.rename();
}

} // namespace tarnex::formats
