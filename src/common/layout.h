/** Tables laid out one after the other in one block. */
#ifndef TARNEX_COMMON_LAYOUT_H
#define TARNEX_COMMON_LAYOUT_H

#include <cstdint>

#include <cstddef>

/** Places tables; run once without a block to learn the bytes it takes, then again with it. */
class Layout
{
public:
    explicit Layout(void *block) : base(static_cast<char *>(block)) {}

    /** Points `table` at room for `count` elements, aligned for any type. */
    template <class T>
    void place(T *&table, std::int64_t count)
    {
        if (base)
            table = reinterpret_cast<T *>(base + used);
        used += (static_cast<std::size_t>(count) * sizeof(T) + 15) / 16 * 16;
    }

    std::size_t bytes() const { return used; }

private:
    char *base;
    std::size_t used = 0;
};

#endif
