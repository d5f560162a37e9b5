/** Work in processes of their own, which begin with a copy of everything as it is. */
#ifndef TARNEX_PLANNING_CHILD_H
#define TARNEX_PLANNING_CHILD_H

#include <functional>
#include <string>
#include <string_view>

#include <sys/types.h>

namespace tarnex::planning
{

/** A process that works and tells what it finds, line by line. It ends when this is destroyed, at
 * the latest. */
class Child
{
public:
    /** Takes what the child tells. */
    using Tell = std::function<void(std::string_view)>;

    /** Starts `work`, whose exceptions end the child; std::system_error when that is not possible.
     */
    explicit Child(const std::function<void(const Tell &)> &work);
    ~Child();
    Child(Child &&other) noexcept;
    Child &operator=(Child &&other) noexcept;

    /** The next line that the child tells, without its end; false when it has ended. */
    bool readLine(std::string &line);
    /** All that the child has still to tell. */
    std::string readAll();
    /** Waits for the end of the child; whether it did all its work. */
    bool hasSucceeded();

private:
    bool fill();
    void end();

    pid_t process = -1;
    int pipe = -1;
    std::string buffer; ///< told, but not yet asked for
};

/** What `work` returns when a child does it; nothing that it changes is changed here.
 * std::runtime_error when the child fails. */
std::string inChild(const std::function<std::string()> &work);

} // namespace tarnex::planning

#endif
