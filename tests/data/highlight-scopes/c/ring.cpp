: // A ring of bytes between one writer and one reader.
= ccccccccccccccccccccccccccccccccccccccccccccccccccccc
: #include <cstdint>
= pppppppp
: #include "ring.h"
= pppppppp ssssssss
:
= p
: #define RING_SIZE 0x1000
= ppppppp ttttttttt nnnnnn
:   # define ALIGN(x) (((x) + 7) & ~7)
= pppppppppp fffff            n     n
:
: /* The indices only grow; their difference is what is filled.
= cccccccccccccccccccccccccccccccccccccccccccccccccccccccccccccc
:  * "quotes" and // slashes mean nothing in here. **/
= cccccccccccccccccccccccccccccccccccccccccccccccccccc
: template<typename T>
= kkkkkkkk kkkkkkkk t
: class Ring final : public Base {
= kkkkk tttt kkkkk   kkkkkk tttt
: public:
= kkkkkk
:     explicit Ring(size_t capacity) noexcept : m_capacity(capacity) {}
=     kkkkkkkk ffff tttttt           kkkkkkkk   ffffffffff
:     virtual ~Ring() override = default;
=     kkkkkkk  ffff   kkkkkkkk   kkkkkkk
:
:     [[nodiscard]] bool push(T value);
=                   kkkk ffff t
:     constexpr uint32_t used() const { return m_tail - m_head; }
=     kkkkkkkkk tttttttt ffff   kkkkk   kkkkkk
:
: private:
= kkkkkkk
:     static_assert(sizeof(uint8_t) == 1, "bytes are small");
=     kkkkkkkkkkkkk kkkkkk ttttttt     n  sssssssssssssssss
:     static constexpr double grow = 1.5e+2, third = .333, one = 1'000;
=     kkkkkk kkkkkkkkk kkkkkk        nnnnnn           nnn        n nnn
:     uint64_t m_head = 0, m_tail = 0b1010;
=     tttttttt          n           nnnnnn
:     ssize_t m_capacity;
=     ttttttt
:     T *m_items = nullptr;
=     t            bbbbbbb
: };
:
: template<typename T>
= kkkkkkkk kkkkkkkk t
: bool Ring<T>::push(T value)
= kkkk tttt t   ffff t
: {
:     if (m_items == NULL || used() == m_capacity) {
=     kk             bbbb    ffff
:         return false;
=         kkkkkk bbbbb
:     }
:     char quote = '"', end = '\n', escaped = '\'';
=     kkkk         sss        ssss            ssss
:     for (int i = 0; i < 10; ++i) {
=     kkk  kkk     n      nn
:         m_items [m_tail++ % RING_SIZE] = value;
=                             ttttttttt
:     }
:     const char *url = "see http://example.org/ring", *said = "he said \"no\"";
=     kkkkk kkkk                  cccccccccccccccccccccccccccccccccccccccccccccc
:     my_type_t other = static_cast<my_type_t>(value);
=     ttttttttt         kkkkkkkkkkk ttttttttt
:     std::printf ("%s %c%c%c\n", url, quote, end, escaped);
=          ffffff  sssssssssssss
:     goto done;
=     kkkk
: done:
:     return true; /* one line */ /**/
=     kkkkkk bbbb  cccccccccccccc cccc
: }
:
= p
: #ifdef __cplusplus
= pppppp
: extern "C" int ring_open(void) { return 0777 + 0o17 + 12ul; }
= kkkkkk sss kkk fffffffff kkkk    kkkkkk nnnn   nnnn
: #endif
= pppppp
: /* never closed
:
