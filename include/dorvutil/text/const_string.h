#pragma once

#include "dorvutil/text/string.h"

/// Strings over literals.
namespace dorvutil {

/// An ORVustring over a literal: reading copies no characters, the first change makes a block of its own. The literal
/// must outlive the object; copies made as ORVustring have their own characters.
class DORVUTIL_API ORVcustring : public ORVustring {
public:
    ORVcustring(const char* literal) : m_literal(literal) { m_guts = &m_literal; }
    ORVcustring(const ORVcustring& other) : ORVustring(), m_literal(other.m_literal) { Take(other); }
    ~ORVcustring() { Detach(); }
    ORVcustring& operator=(const ORVcustring& other);
    ORVcustring& operator=(const char* s) { return ORVustring::operator=(s), *this; }  ///< Copies the characters.

private:
    void Take(const ORVcustring& other);
    void Detach() {
        if (m_guts == &m_literal) init();
    }

    ConstStringGuts<char> m_literal;
};

/// An ORVwstring over a literal: reading copies no characters, the first change makes a block of its own. The literal
/// must outlive the object; copies made as ORVwstring have their own characters.
class DORVUTIL_API ORVcwstring : public ORVwstring {
public:
    ORVcwstring(const char16_t* literal) : m_literal(literal) { m_guts = &m_literal; }
    ORVcwstring(const ORVcwstring& other) : ORVwstring(), m_literal(other.m_literal) { Take(other); }
    ~ORVcwstring() { Detach(); }
    ORVcwstring& operator=(const ORVcwstring& other);
    ORVcwstring& operator=(const char16_t* s) { return ORVwstring::operator=(s), *this; }  ///< Copies the characters.

private:
    void Take(const ORVcwstring& other);
    void Detach() {
        if (m_guts == &m_literal) init();
    }

    ConstStringGuts<char16_t> m_literal;
};

}  // namespace dorvutil
