#pragma once

namespace Common {

// N bits, all clear at first. Positions of N and above are refused: they read as clear, and setting one
// changes nothing.
template <unsigned int N>
class bitset {
  public:
    static constexpr unsigned int size() { return N; }

    bool test(unsigned int bit) const { return bit < N && (m_words[bit / 32] >> (bit % 32) & 1U) != 0; }
    bool operator[](unsigned int bit) const { return test(bit); }

    void set(unsigned int bit) {
        if (bit < N) m_words[bit / 32] |= 1U << (bit % 32);
    }
    void reset(unsigned int bit) {
        if (bit < N) m_words[bit / 32] &= ~(1U << (bit % 32));
    }
    void reset() {
        for (unsigned int& word : m_words)
            word = 0;
    }

    unsigned int count() const {
        unsigned int n = 0;
        for (unsigned int bit = 0; bit < N; ++bit)
            n += test(bit) ? 1 : 0;
        return n;
    }
    bool any() const { return count() != 0; }

    bool operator==(bitset const& other) const = default;

  private:
    unsigned int m_words[(N + 31) / 32] = {};
};

}  // namespace Common
