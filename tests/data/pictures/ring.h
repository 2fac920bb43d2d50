#pragma once

#include <array>
#include <optional>

/// The last `size` values; older ones go.
template<typename Value, int size>
class Ring {
public:
    void push(const Value &value)
    {
        m_values[m_next++ % size] = value;
        if (m_count < size) {
            ++m_count;
        }
    }

    int count() const { return m_count; }

    /// 0 is the latest; none beyond the oldest.
    std::optional<Value> ago(int age) const
    {
        if (age < 0 || age >= m_count) {
            return std::nullopt;
        }
        return m_values[(m_next - 1 - age) % size];
    }

private:
    std::array<Value, size> m_values = {};
    unsigned m_next = 0;
    int m_count = 0;
};
