#include <cstdarg>

#include "dorvutil/text/print_engine.h"
#include "dorvutil/text/string.h"
#include "dorvutil/text/string_file.h"

/// The printf and reading members of the string classes.
namespace dorvutil {
namespace {

constexpr std::uint32_t kMaxCarriageReturns = 100;

// A list that came as a function's parameter may have decayed to a pointer: a copy can be passed on by address.
template <class T>
void FormatList(print::Sink<T>& out, const T* format, std::va_list args) {
    std::va_list copy;
    va_copy(copy, args);
    print::Format(out, format, &copy);
    va_end(copy);
}

template <class T>
bool WriteSink(COrvFileHandleBase* file, const print::Sink<T>& text) {
    return WriteUnits(file, text.Data(), text.Length());
}

// What no text can hold any more is read and dropped, so that the next line starts where it should.
template <class T>
void ReadLine(COrvFileHandleBase* file, print::Sink<T>& out) {
    std::uint32_t dropped = 0;
    for (T unit = 0; ReadUnits(file, &unit, 1) == 1 && unit != '\n';) {
        if (unit == '\r' && dropped < kMaxCarriageReturns) {
            ++dropped;
        } else {
            out.Append(&unit, 1);
        }
    }
}

template <class T>
void ReadText(COrvFileHandleBase* file, std::int32_t maxLength, print::Sink<T>& out) {
    constexpr std::uint32_t kPart = 512;
    std::uint32_t left = maxLength < 1 ? 0 : static_cast<std::uint32_t>(maxLength);
    left = left < StringGuts<T>::kMaxCapacity ? left : StringGuts<T>::kMaxCapacity;
    while (left != 0) {
        const std::uint32_t wanted = left < kPart ? left : kPart;
        T* const place = out.Extend(wanted);
        const std::uint32_t got = place ? ReadUnits(file, place, wanted) : 0;
        if (place) out.Cut(out.Length() - (wanted - got));
        if (got != wanted) return;
        left -= got;
    }
}

}  // namespace

ORVustring ORVustring::vprintf(const char* format, std::va_list args) {
    print::Sink<char> text;
    FormatList(text, format, args);
    return FromUnits(text.Data(), text.Length());
}

ORVustring ORVustring::printf(const char* format, ...) {
    std::va_list args;
    va_start(args, format);
    print::Sink<char> text;
    print::Format(text, format, &args);
    va_end(args);
    return FromUnits(text.Data(), text.Length());
}

ORVustring ORVustring::printf(const char* format, OrvPrintArgs& args) {
    print::Sink<char> text;
    if (args.m_list != nullptr) print::Format(text, format, args.m_list);
    args.m_list = nullptr;
    return FromUnits(text.Data(), text.Length());
}

bool ORVustring::printf(COrvFileHandleBase* file, const char* format, ...) {
    std::va_list args;
    va_start(args, format);
    print::Sink<char> text;
    print::Format(text, format, &args);
    va_end(args);
    return WriteSink(file, text);
}

bool ORVustring::printf(COrvFileHandleBase* file) const { return !empty() && WriteUnits(file, Text(), length()); }

ORVustring ORVustring::ReadNextLine(COrvFileHandleBase* file) {
    print::Sink<char> text;
    ReadLine(file, text);
    return FromUnits(text.Data(), text.Length());
}

ORVustring ORVustring::ReadStringFromFile(COrvFileHandleBase* file, std::int32_t maxLength) {
    print::Sink<char> text;
    ReadText(file, maxLength, text);
    return FromUnits(text.Data(), text.Length());
}

ORVustring ORVustring::FromUnits(const char* units, std::uint32_t n) {
    ORVustring result;
    result.assignUnits(units, n);
    return result;
}

ORVwstring ORVwstring::vprintf(const char16_t* format, std::va_list args) {
    print::Sink<char16_t> text;
    FormatList(text, format, args);
    return FromUnits(text.Data(), text.Length());
}

ORVwstring ORVwstring::printf(const char16_t* format, ...) {
    std::va_list args;
    va_start(args, format);
    print::Sink<char16_t> text;
    print::Format(text, format, &args);
    va_end(args);
    return FromUnits(text.Data(), text.Length());
}

ORVwstring ORVwstring::printf(const char16_t* format, OrvPrintArgs& args) {
    print::Sink<char16_t> text;
    if (args.m_list != nullptr) print::Format(text, format, args.m_list);
    args.m_list = nullptr;
    return FromUnits(text.Data(), text.Length());
}

bool ORVwstring::printf(COrvFileHandleBase* file, const char16_t* format, ...) {
    std::va_list args;
    va_start(args, format);
    print::Sink<char16_t> text;
    print::Format(text, format, &args);
    va_end(args);
    return WriteSink(file, text);
}

bool ORVwstring::printf(COrvFileHandleBase* file) const { return !empty() && WriteUnits(file, Text(), length()); }

ORVwstring ORVwstring::ReadNextLine(COrvFileHandleBase* file) {
    print::Sink<char16_t> text;
    ReadLine(file, text);
    return FromUnits(text.Data(), text.Length());
}

ORVwstring ORVwstring::ReadStringFromFile(COrvFileHandleBase* file, std::int32_t maxLength) {
    print::Sink<char16_t> text;
    ReadText(file, maxLength, text);
    return FromUnits(text.Data(), text.Length());
}

ORVwstring ORVwstring::FromUnits(const char16_t* units, std::uint32_t n) {
    ORVwstring result;
    result.assignUnits(units, n);
    return result;
}

}  // namespace dorvutil
