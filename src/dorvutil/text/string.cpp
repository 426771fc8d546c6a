#include "dorvutil/text/string.h"

#include <algorithm>
#include <utility>

#include "dorvutil/text/const_string.h"
#include "dorvutil/text/empty_strings.h"
#include "dorvutil/text/encoding.h"
#include "dorvutil/text/string_storage.h"

namespace dorvutil {

namespace {

std::uint32_t UnitsFor(const char* s, std::uint32_t n) { return GetNumUnitsNeededForUTF16(s, n); }
std::uint32_t UnitsFor(const char16_t* s, std::uint32_t n) { return GetNumBytesConvertedToUTF8(s, n); }
void Convert(const char* s, std::uint32_t n, char16_t* out, std::uint32_t room) {
    ORVConvertUTF8toUTF16(s, n, out, room);
}
void Convert(const char16_t* s, std::uint32_t n, char* out, std::uint32_t room) {
    ORVConvertUTF16toUTF8(s, n, out, room);
}

}  // namespace

ORVustring::ORVustring(const ORVwstring& text) { assign(text.Text(), static_cast<std::int32_t>(text.length())); }
ORVustring::ORVustring(char16_t c) { assign(&c, 1); }
ORVustring::ORVustring(const char16_t* s, std::int32_t n) { assign(s, n); }
ORVustring::ORVustring(const Base& text) : Base(ShareUnwatched(text), nullptr) {}
ORVustring::ORVustring(Base&& text) : Base(StealUnwatched(text), nullptr) {}

ORVustring& ORVustring::operator=(const char* s) {
    if (s == nullptr || m_guts == nullptr || s != m_guts->Data()) assign(s, -1);
    EmptyOther();
    return *this;
}

ORVustring& ORVustring::operator=(const ORVustring& other) {
    if (this == &other) return *this;
    other.DropStale();
    share(other.m_guts);
    EmptyOther();
    return *this;
}

ORVustring& ORVustring::operator=(ORVustring&& other) noexcept {
    if (this == &other) return *this;
    ORVustring taken(std::move(other));
    std::swap(m_guts, taken.m_guts);
    std::swap(m_other, taken.m_other);
    return *this;
}

ORVustring& ORVustring::operator=(const ORVwstring& text) {
    assign(text.Text(), static_cast<std::int32_t>(text.length()));
    return *this;
}

// The source may be the copy in the other width, so that goes last.
bool ORVustring::assign(const char16_t* s, std::int32_t n) {
    const bool none = s == nullptr || n == 0 || *s == 0;
    const std::size_t all = none ? 0 : n < 0 ? std::char_traits<char16_t>::length(s) : static_cast<std::size_t>(n);
    if (all > 1 * std::size_t{Guts::kMaxCapacity}) return false;
    const auto count = static_cast<std::uint32_t>(all);
    const std::uint32_t units = none ? 0 : UnitsFor(s, count);
    if (units == 0) {
        Clear();
    } else {
        char* const data = Writable(units);
        if (data == nullptr) return false;
        Convert(s, count, data, units);
        SetText(units);
    }
    EmptyOther();
    return true;
}

const ORVwstring& ORVustring::Refresh() const {
    if (!empty() && m_other == nullptr) m_other = new ORVwstring;
    if (m_other == nullptr) return EmptyStrings::s_wide.m_text;
    if (m_guts != nullptr && m_other->assign(Text(), static_cast<std::int32_t>(length()))) {
        ClearChanged();
    } else {
        m_other->Clear();
    }
    return *m_other;
}

void ORVustring::DestroyOther() const {
    delete m_other;
    m_other = nullptr;
}

void ORVustring::EmptyOther() const {
    if (m_other) m_other->Clear();
}

bool ORVustring::ThreadReady() {
    if (m_other && !m_other->ThreadReady()) DestroyOther();
    return Base::ThreadReady();
}

bool ORVustring::IsLatin1() const { return wString().IsLatin1(); }

void ORVustring::makeFileSlashOSCompatible() {
    const char from[] = {m_FwdSlash, 0};
    const char to[] = {m_FileSlash, 0};
    replaceallchar(from, to, 100);
}

ORVustring& ORVustring::insert(std::int32_t pos, const ORVustring& s, std::int32_t n) {
    const auto all = static_cast<std::int32_t>(s.length());
    return insert(pos, s.Text(), n < 0 || n > all ? all : n);
}

void* ORVustring::operator new(std::size_t size) noexcept { return AllocStringObject(size); }
void ORVustring::operator delete(void* object) noexcept { FreeStringObject(object); }

ORVwstring::ORVwstring(const ORVustring& text) { assign(text.Text(), static_cast<std::int32_t>(text.length())); }
ORVwstring::ORVwstring(char c) { assign(&c, 1); }
ORVwstring::ORVwstring(const char* s, std::int32_t n) { assign(s, n); }
ORVwstring::ORVwstring(const Base& text) : Base(ShareUnwatched(text), nullptr) {}
ORVwstring::ORVwstring(Base&& text) : Base(StealUnwatched(text), nullptr) {}

ORVwstring& ORVwstring::operator=(const char16_t* s) {
    if (s == nullptr || m_guts == nullptr || s != m_guts->Data()) assign(s, -1);
    EmptyOther();
    return *this;
}

ORVwstring& ORVwstring::operator=(const ORVwstring& other) {
    if (this == &other) return *this;
    other.DropStale();
    share(other.m_guts);
    EmptyOther();
    return *this;
}

ORVwstring& ORVwstring::operator=(ORVwstring&& other) noexcept {
    if (this == &other) return *this;
    ORVwstring taken(std::move(other));
    std::swap(m_guts, taken.m_guts);
    std::swap(m_other, taken.m_other);
    return *this;
}

ORVwstring& ORVwstring::operator=(const ORVustring& text) {
    assign(text.Text(), static_cast<std::int32_t>(text.length()));
    return *this;
}

// The source may be the copy in the other width, so that goes last.
bool ORVwstring::assign(const char* s, std::int32_t n) {
    const bool none = s == nullptr || n == 0 || *s == 0;
    const std::size_t all = none ? 0 : n < 0 ? std::char_traits<char>::length(s) : static_cast<std::size_t>(n);
    if (all > 4 * std::size_t{Guts::kMaxCapacity}) return false;
    const auto count = static_cast<std::uint32_t>(all);
    const std::uint32_t units = none ? 0 : UnitsFor(s, count);
    if (units == 0) {
        Clear();
    } else {
        char16_t* const data = Writable(units);
        if (data == nullptr) return false;
        Convert(s, count, data, units);
        SetText(units);
    }
    EmptyOther();
    return true;
}

const ORVustring& ORVwstring::Refresh() const {
    if (!empty() && m_other == nullptr) m_other = new ORVustring;
    if (m_other == nullptr) return EmptyStrings::s_narrow.m_text;
    if (m_guts != nullptr && m_other->assign(Text(), static_cast<std::int32_t>(length()))) {
        ClearChanged();
    } else {
        m_other->Clear();
    }
    return *m_other;
}

void ORVwstring::DestroyOther() const {
    delete m_other;
    m_other = nullptr;
}

void ORVwstring::EmptyOther() const {
    if (m_other) m_other->Clear();
}

bool ORVwstring::ThreadReady() {
    if (m_other && !m_other->ThreadReady()) DestroyOther();
    return Base::ThreadReady();
}

bool ORVwstring::IsLatin1() const {
    const char16_t* const text = Text();
    return std::all_of(text, text + length(), [](char16_t c) { return c < 256; });
}

void ORVwstring::makeFileSlashOSCompatible() {
    const char16_t from[] = {m_FwdSlash, 0};
    const char16_t to[] = {m_FileSlash, 0};
    replaceallchar(from, to, 100);
}

ORVwstring& ORVwstring::insert(std::int32_t pos, const ORVwstring& s, std::int32_t n) {
    const auto all = static_cast<std::int32_t>(s.length());
    return insert(pos, s.Text(), n < 0 || n > all ? all : n);
}

void* ORVwstring::operator new(std::size_t size) noexcept { return AllocStringObject(size); }
void ORVwstring::operator delete(void* object) noexcept { FreeStringObject(object); }

void ORVcustring::Take(const ORVcustring& other) {
    if (other.m_guts == &other.m_literal) {
        m_literal = ConstStringGuts<char>(other.m_literal.Data());
        m_guts = &m_literal;
        return;
    }
    Detach();
    ORVustring::operator=(static_cast<const ORVustring&>(other));
}

ORVcustring& ORVcustring::operator=(const ORVcustring& other) {
    if (this == &other) return *this;
    *this = static_cast<const char*>(nullptr);
    Take(other);
    return *this;
}

void ORVcwstring::Take(const ORVcwstring& other) {
    if (other.m_guts == &other.m_literal) {
        m_literal = ConstStringGuts<char16_t>(other.m_literal.Data());
        m_guts = &m_literal;
        return;
    }
    Detach();
    ORVwstring::operator=(static_cast<const ORVwstring&>(other));
}

ORVcwstring& ORVcwstring::operator=(const ORVcwstring& other) {
    if (this == &other) return *this;
    *this = static_cast<const char16_t*>(nullptr);
    Take(other);
    return *this;
}

}  // namespace dorvutil
