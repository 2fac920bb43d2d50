// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Presses a key or turns the wheel, and says when the screen was drawn on, from which latencies and frames are reckoned (frames.py).
//
// usage: input_probe COUNT MILLISECONDS X Y WIDTH HEIGHT key CHARACTER|wheel
//
// Prints "input" or "drawn" and the microseconds since the start in a line for each. Drawn on means in that part of the screen. A key waits
// for what the one before it draws, two seconds at most; the wheel turns on time, whatever is drawn.

#include <xcb/damage.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include <poll.h>

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr Clock::duration longestWait = 2s;
/// How long what is drawn is looked at after the last input.
constexpr Clock::duration aftermath = 500ms;
constexpr uint8_t wheelDown = 5;

template<typename Reply>
auto owned(Reply *reply)
{
    return std::unique_ptr<Reply, decltype(&std::free)>(reply, &std::free);
}

/// A connection to the display, the part of it that is looked at, and what happened so far.
class Probe {
public:
    enum class Until { itsTime, drawn };

    /// `connection` is to a display with the extensions Damage and XTest, and this object's from now on.
    Probe(xcb_connection_t *connection, xcb_rectangle_t area)
        : m_connection(connection), m_root(xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root),
          m_firstEvent(xcb_get_extension_data(m_connection, &xcb_damage_id)->first_event), m_damage(xcb_generate_id(m_connection)),
          m_area(area)
    {
        owned(xcb_damage_query_version_reply(m_connection, xcb_damage_query_version(m_connection, 1, 1), nullptr));
        xcb_damage_create(m_connection, m_damage, m_root, XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
        owned(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
        // At first all that there is counts as drawn.
        while (xcb_generic_event_t *event = xcb_poll_for_event(m_connection)) {
            std::free(event);
        }
    }
    ~Probe() { xcb_disconnect(m_connection); }
    Probe(const Probe &) = delete;
    Probe &operator=(const Probe &) = delete;

    /// The key that gives `character` without a modifier; 0 when there is none.
    [[nodiscard]] uint8_t keyOf(char character) const
    {
        const xcb_setup_t *setup = xcb_get_setup(m_connection);
        const auto count = uint8_t(setup->max_keycode - setup->min_keycode + 1);
        const auto mapping =
            owned(xcb_get_keyboard_mapping_reply(m_connection, xcb_get_keyboard_mapping(m_connection, setup->min_keycode, count), nullptr));
        const xcb_keysym_t *symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
        for (int key = 0; key < count; ++key) {
            if (symbols[key * mapping->keysyms_per_keycode] == xcb_keysym_t(character)) {
                return uint8_t(setup->min_keycode + key);
            }
        }
        return 0;
    }

    /// `press` and `release` are types of core events, `detail` the key or button.
    void send(uint8_t press, uint8_t release, uint8_t detail)
    {
        m_happened.emplace_back("input", Clock::now());
        for (const uint8_t type : {press, release}) {
            xcb_test_fake_input(m_connection, type, detail, XCB_CURRENT_TIME, m_root, 0, 0, 0);
        }
        xcb_damage_subtract(m_connection, m_damage, XCB_NONE, XCB_NONE);
        xcb_flush(m_connection);
    }

    void listen(Clock::time_point end, Until until)
    {
        while (Clock::now() < end) {
            while (xcb_generic_event_t *event = xcb_poll_for_event(m_connection)) {
                if (isInArea(*owned(event))) {
                    m_happened.emplace_back("drawn", Clock::now());
                    if (until == Until::drawn) {
                        return;
                    }
                }
            }
            const auto left = std::chrono::nanoseconds(end - Clock::now()).count();
            pollfd socket{xcb_get_file_descriptor(m_connection), POLLIN, 0};
            const timespec time{left > 0 ? left / 1'000'000'000 : 0, left > 0 ? left % 1'000'000'000 : 0};
            ppoll(&socket, 1, &time, nullptr);
        }
    }

    void print() const
    {
        for (const auto &[what, when] : m_happened) {
            std::printf("%s %lld\n", what, static_cast<long long>((when - m_happened.front().second) / 1us));
        }
    }

private:
    [[nodiscard]] bool isInArea(const xcb_generic_event_t &event) const
    {
        if ((event.response_type & 0x7F) != m_firstEvent + XCB_DAMAGE_NOTIFY) {
            return false;
        }
        const xcb_rectangle_t drawn = reinterpret_cast<const xcb_damage_notify_event_t &>(event).area;
        return drawn.x < m_area.x + m_area.width && m_area.x < drawn.x + drawn.width && drawn.y < m_area.y + m_area.height &&
               m_area.y < drawn.y + drawn.height;
    }

    xcb_connection_t *m_connection;
    xcb_window_t m_root;
    int m_firstEvent;
    xcb_damage_damage_t m_damage;
    xcb_rectangle_t m_area;
    std::vector<std::pair<const char *, Clock::time_point>> m_happened;
};

} // namespace

int main(int argc, char **argv)
{
    const auto number = [argv](int index) { return std::atoi(argv[index]); };
    const bool isKey = argc == 9 && argv[7] == std::string_view("key");
    if (!isKey && !(argc == 8 && argv[7] == std::string_view("wheel"))) {
        std::fputs("usage: input_probe COUNT MILLISECONDS X Y WIDTH HEIGHT key CHARACTER|wheel\n", stderr);
        return 2;
    }
    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection) != 0 || !xcb_get_extension_data(connection, &xcb_damage_id)->present ||
        !xcb_get_extension_data(connection, &xcb_test_id)->present) {
        std::fputs("input_probe: there is no display with Damage and XTest\n", stderr);
        return 1;
    }
    Probe probe(connection, {int16_t(number(3)), int16_t(number(4)), uint16_t(number(5)), uint16_t(number(6))});
    const uint8_t key = isKey ? probe.keyOf(argv[8][0]) : 0;
    const auto interval = std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double, std::milli>(std::atof(argv[2])));
    Clock::time_point next = Clock::now();
    for (int sent = 0; sent < number(1); ++sent) {
        isKey ? probe.send(XCB_KEY_PRESS, XCB_KEY_RELEASE, key) : probe.send(XCB_BUTTON_PRESS, XCB_BUTTON_RELEASE, wheelDown);
        if (isKey) {
            probe.listen(Clock::now() + longestWait, Probe::Until::drawn);
            next = std::max(next, Clock::now());
        }
        next += interval;
        probe.listen(next, Probe::Until::itsTime);
    }
    probe.listen(Clock::now() + aftermath, Probe::Until::itsTime);
    probe.print();
}
