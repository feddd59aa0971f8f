#pragma once

namespace Common {

// The representation beneath string and istring: three heap blocks (size cell, count cell, text) that
// copies share. The count is a plain integer, so texts that share may not be used by two threads at once.
//
// Lengths are 32 bits. Embedded zero bytes are legal; the text always has a terminating zero behind it.
class SharedText {
  public:
    static constexpr unsigned int npos = 0xFFFFFFFF;

    unsigned int size() const { return *m_size - 1; }
    bool empty() const { return size() == 0; }
    char const* c_str() const { return m_text; }

    // The byte at `index`, 0 at or past the end.
    char operator[](unsigned int index) const { return index < size() ? m_text[index] : '\0'; }

    // How many objects share these bytes, this one included.
    unsigned int shareCount() const { return *m_count; }

    // True for space, tab, carriage return and line feed only: narrower than isspace.
    static bool IsWhiteSpace(char c);

    // Decimal text to number, see Conversion::toNumber.
    unsigned long long toQWord() const;
    unsigned short toWord() const;
    unsigned char toByte() const;

  protected:
    using Compare = int (*)(void const* a, void const* b, unsigned int n);  // 0 when equal

    // `n` bytes at `s`, or up to the first zero byte when `n` is npos. A null `s` gives the empty text.
    SharedText(char const* s, unsigned int n);
    SharedText(SharedText const& other);  // shares
    SharedText& operator=(SharedText const& other) = delete;
    ~SharedText();

    // Each change of contents detaches from the other holders. The source may lie in this very text.
    void assignText(char const* s, unsigned int n);
    void shareWith(SharedText const& other);
    void appendText(char const* s, unsigned int n);

    // `position` and `n` are clamped to the text.
    void replaceText(unsigned int position, unsigned int n, char const* s, unsigned int length);

    unsigned int findText(char const* s, unsigned int position, unsigned int n, Compare compare) const;
    unsigned int rfindText(char const* s, unsigned int position, unsigned int n, Compare compare) const;

    // The part of the text that `substr` copies; clamped to the text. `n` of npos stops at the first zero
    // byte, not at the end, since the copy goes through the terminated form.
    struct Range {
        char const* text;
        unsigned int length;
    };
    Range range(unsigned int position, unsigned int n) const;
    Range trimmed(bool left, bool right) const;

    // Replaces each byte by `convert` of it, in a text that nobody shares yet.
    void convertBytes(int (*convert)(int));

  private:
    void detach();
    void release();

    unsigned int* m_size;   // length plus one
    unsigned int* m_count;  // holders of these bytes
    char* m_text;
};

// strlen that takes a null pointer for an empty text.
unsigned int textLength(char const* s);

}  // namespace Common
