#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/text/string.h"

/// What travels with a message. A receiver asks the class it expects whether CastIsPossible for the payload's tag
/// before it casts the pointer. Results are mutable, since listeners are handed the payload as const; when several
/// listeners write one, the last one called wins. Pointers inside a payload stay the sender's. Not synchronised.
namespace dorvutil {

/// A point of the screen.
struct tagPOINT {
    std::int32_t x;
    std::int32_t y;
};

/// Base of every payload.
class DORVUTIL_API CBDataBase {
public:
    CBDataBase() = default;
    CBDataBase(const CBDataBase&) = default;
    CBDataBase& operator=(const CBDataBase&) = default;
    virtual ~CBDataBase() = default;

    std::uint32_t Type() const { return m_type; }
    static bool CastIsPossible(std::uint32_t tag) { return tag == 0; }

protected:
    explicit CBDataBase(std::uint32_t type) : m_type(type) {}

private:
    std::uint32_t m_type = 0;
};

/// A payload class with its tag.
template <std::uint32_t Tag>
class TCBData : public CBDataBase {
public:
    static constexpr std::uint32_t kTag = Tag;

    TCBData() : CBDataBase(Tag) {}
    static bool CastIsPossible(std::uint32_t tag) { return tag == Tag; }
};

class DORVUTIL_API CBDataL : public TCBData<1> {
public:
    explicit CBDataL(std::int32_t value) : m_value(value) {}

    std::int32_t m_value;
};

class DORVUTIL_API CBDataLOut : public TCBData<2> {
public:
    explicit CBDataLOut(std::int32_t value) : m_value(value) {}

    mutable std::int32_t m_value;  ///< Filled in by the listener.
};

class DORVUTIL_API CBData2L : public TCBData<4> {
public:
    CBData2L(std::int32_t first, std::int32_t second) : m_first(first), m_second(second) {}

    std::int32_t m_first;
    std::int32_t m_second;
};

class DORVUTIL_API CBData2LOut : public TCBData<5> {
public:
    CBData2LOut(std::int32_t first, std::int32_t second) : m_first(first), m_second(second) {}

    mutable std::int32_t m_first;   ///< Filled in by the listener.
    mutable std::int32_t m_second;  ///< Filled in by the listener.
};

class DORVUTIL_API CBDataNormal : public TCBData<6> {
public:
    CBDataNormal(std::int32_t first, const ORVwstring& text, std::int32_t second)
        : m_first(first), m_text(text), m_second(second) {}

    std::int32_t m_first;
    ORVwstring m_text;
    mutable std::int32_t m_second;  ///< Filled in by the listener of a message that asks for a number.
};

class DORVUTIL_API CBData_In2wsz_Out1L : public TCBData<8> {
public:
    CBData_In2wsz_Out1L(char16_t* first, char16_t* second, std::int32_t result)
        : m_first(first), m_second(second), m_result(result) {}

    char16_t* m_first;
    char16_t* m_second;
    mutable std::int32_t m_result;  ///< Filled in by the listener.
};

class DORVUTIL_API CBDataGetAttr : public TCBData<9> {
public:
    CBDataGetAttr(const ORVustring& name, const char* argument) : m_name(name), m_argument(argument) {}

    ORVustring m_name;
    const char* m_argument;
    mutable ORVustring m_result;  ///< Filled in by the listener; empty until then.
};

class DORVUTIL_API CBDataUIMsg : public TCBData<10> {
public:
    CBDataUIMsg(std::int32_t event, std::int32_t parameter, const tagPOINT& point)
        : m_event(event), m_parameter(parameter), m_point(point) {}
    explicit CBDataUIMsg(std::int32_t event, std::int32_t parameter = 0) : CBDataUIMsg(event, parameter, {0, 0}) {}

    std::int32_t m_event;
    std::int32_t m_parameter;
    tagPOINT m_point;
};

}  // namespace dorvutil
