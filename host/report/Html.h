// Writes HTML. Every text that is written is escaped here and nowhere else.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

namespace host::report {

/// The name of an element or an attribute, as it stands in this program's source: no text from
/// outside can become one.
struct Literal {
    // NOLINTNEXTLINE(google-explicit-constructor,hicpp-explicit-conversions): it is written as text
    consteval Literal(const char* literal) : text(literal) {}
    std::string_view text;
};

/// Text that is no more in the system code page.
struct Utf8 {
    std::string text;
};

struct Attribute {
    Literal name;
    std::string value;  ///< in the system code page
};

/// "h2" for 2; from "h6" on they are all that.
Literal Heading(int level);

class Html {
public:
    /// An open element. Its destructor closes it.
    class Element {
    public:
        ~Element();
        Element(const Element&) = delete;
        Element& operator=(const Element&) = delete;

    private:
        friend class Html;
        Element(Html& html, const Literal& name) : html_(html), name_(name) {}
        Html& html_;
        Literal name_;
    };
    using Attributes = std::initializer_list<Attribute>;

    [[nodiscard]] Element Open(const Literal& name, Attributes attributes = {});
    /// An element that holds a text and nothing else.
    void Leaf(const Literal& name, std::string_view text, Attributes attributes = {});
    void Leaf(const Literal& name, const Utf8& text, Attributes attributes = {});
    /// An element that holds nothing.
    void Empty(const Literal& name, Attributes attributes = {});

    /// In the system code page. A control character, and one that turns the direction of the text
    /// around it, becomes visible.
    void Text(std::string_view text);

    /// What another one has written.
    void Append(const Html& other) { written_ += other.written_; }

    /// An identifier that no other element of this page has.
    std::string NewId();

    const std::string& Written() const noexcept { return written_; }

private:
    void Begin(const Literal& name, Attributes attributes);
    void Escape(std::string_view utf8);

    std::string written_;
    std::size_t ids_ = 0;
};

}  // namespace host::report
