// A ring of bytes between one writer and one reader.
#include <cstdint>
#include "ring.h"

#define RING_SIZE 0x1000
  # define ALIGN(x) (((x) + 7) & ~7)

/* The indices only grow; their difference is what is filled.
 * "quotes" and // slashes mean nothing in here. **/
template<typename T>
class Ring final : public Base {
public:
    explicit Ring(size_t capacity) noexcept : m_capacity(capacity) {}
    virtual ~Ring() override = default;

    [[nodiscard]] bool push(T value);
    constexpr uint32_t used() const { return m_tail - m_head; }

private:
    static_assert(sizeof(uint8_t) == 1, "bytes are small");
    static constexpr double grow = 1.5e+2, third = .333, one = 1'000;
    uint64_t m_head = 0, m_tail = 0b1010;
    ssize_t m_capacity;
    T *m_items = nullptr;
};

template<typename T>
bool Ring<T>::push(T value)
{
    if (m_items == NULL || used() == m_capacity) {
        return false;
    }
    char quote = '"', end = '\n', escaped = '\'';
    for (int i = 0; i < 10; ++i) {
        m_items [m_tail++ % RING_SIZE] = value;
    }
    const char *url = "see http://example.org/ring", *said = "he said \"no\"";
    my_type_t other = static_cast<my_type_t>(value);
    std::printf ("%s %c%c%c\n", url, quote, end, escaped);
    goto done;
done:
    return true; /* one line */ /**/
}

#ifdef __cplusplus
extern "C" int ring_open(void) { return 0777 + 0o17 + 12ul; }
#endif
/* never closed
