#include "terminal.h"

#include <fcntl.h>
#include <langinfo.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#define NCURSES_WIDECHAR 1
#include <curses.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <cwctype>
#include <stdexcept>
#include <system_error>

#include "text_fold.h"

namespace roadlyn {
namespace {

constexpr int kEscapeDelay = 25;  // milliseconds that the rest of an escape sequence may take to come
constexpr std::array<int, 2> kLeaveSignals = {SIGTERM, SIGHUP};

std::atomic<const WakePipe*> g_wake{nullptr};
volatile std::sig_atomic_t g_leave = 0;

void OnLeaveSignal(int) {
    const int saved = errno;
    g_leave = 1;
    if (const WakePipe* const wake = g_wake.load()) wake->Wake();
    errno = saved;
}

// Wide characters of ncurses need a locale whose text is UTF-8; numbers and messages stay as they are.
void UseUtf8() {
    std::setlocale(LC_CTYPE, "");
    if (std::strcmp(::nl_langinfo(CODESET), "UTF-8") != 0) std::setlocale(LC_CTYPE, "C.UTF-8");
}

std::string Utf8Of(std::uint32_t code) {
    const auto byte = [](std::uint32_t value) { return static_cast<char>(static_cast<unsigned char>(value)); };
    if (code < 0x80) return {byte(code)};
    if (code < 0x800) return {byte(0xC0 | code >> 6), byte(0x80 | (code & 0x3F))};
    if (code < 0x10000) return {byte(0xE0 | code >> 12), byte(0x80 | (code >> 6 & 0x3F)), byte(0x80 | (code & 0x3F))};
    return {byte(0xF0 | code >> 18), byte(0x80 | (code >> 12 & 0x3F)), byte(0x80 | (code >> 6 & 0x3F)),
            byte(0x80 | (code & 0x3F))};
}

wchar_t WideAt(const std::string& text, std::size_t position, std::size_t length) {
    const auto lead = static_cast<unsigned char>(text[position]);
    if (length == 1) return static_cast<wchar_t>(lead);
    auto code = static_cast<std::uint32_t>(lead & (0x7F >> length));
    for (std::size_t i = 1; i < length; ++i) {
        code = code << 6 | (static_cast<unsigned char>(text[position + i]) & 0x3Fu);
    }
    return static_cast<wchar_t>(code);
}

attr_t AttributeOf(Terminal::Style style) {
    switch (style) {
        case Terminal::Style::Bold:
            return A_BOLD;
        case Terminal::Style::Dim:
            return A_DIM;
        case Terminal::Style::Selected:
            return A_REVERSE;
        case Terminal::Style::Warning:
            return A_BOLD;
        default:
            return A_NORMAL;
    }
}

Key KeyOfCode(wint_t code) {
    using Kind = Key::Kind;
    switch (code) {
        case KEY_UP:
            return {Kind::Up, {}};
        case KEY_DOWN:
            return {Kind::Down, {}};
        case KEY_PPAGE:
            return {Kind::PageUp, {}};
        case KEY_NPAGE:
            return {Kind::PageDown, {}};
        case KEY_HOME:
            return {Kind::Home, {}};
        case KEY_END:
            return {Kind::End, {}};
        case KEY_ENTER:
            return {Kind::Enter, {}};
        case KEY_BACKSPACE:
            return {Kind::Backspace, {}};
        case KEY_RESIZE:
            return {Kind::Resize, {}};
        default:
            return {Kind::Other, {}};
    }
}

Key KeyOfCharacter(wint_t character) {
    using Kind = Key::Kind;
    constexpr wint_t kControlC = 3, kControlD = 4, kControlU = 21, kEscape = 27;
    switch (character) {
        case '\r':
        case '\n':
            return {Kind::Enter, {}};
        case '\b':
        case 0x7F:
            return {Kind::Backspace, {}};
        case kControlU:
            return {Kind::ClearAll, {}};
        case kControlC:
        case kControlD:
        case kEscape:
            return {Kind::Leave, {}};
        default:
            break;
    }
    const auto code = static_cast<std::uint32_t>(character);
    if (code < 0x20 || (code >= 0x80 && code < 0xA0) || (code >= 0xD800 && code < 0xE000) || code > 0x10FFFF) {
        return {Kind::Other, {}};
    }
    return {Kind::Character, Utf8Of(code)};
}

}  // namespace

WakePipe::WakePipe() {
    if (::pipe2(m_ends, O_NONBLOCK | O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
}

WakePipe::~WakePipe() {
    ::close(m_ends[0]);
    ::close(m_ends[1]);
}

void WakePipe::Wake() const {
    const char byte = 0;
    [[maybe_unused]] const ssize_t ignored = ::write(m_ends[1], &byte, 1);  // full: it wakes anyway
}

bool WakePipe::Wait(int milliseconds) const {
    std::array<pollfd, 2> files = {pollfd{STDIN_FILENO, POLLIN, 0}, pollfd{m_ends[0], POLLIN, 0}};
    ::poll(files.data(), files.size(), milliseconds);
    bool woken = false;
    std::array<char, 64> bytes;
    while (::read(m_ends[0], bytes.data(), bytes.size()) > 0) woken = true;
    return woken;
}

Terminal::Terminal(const WakePipe& wake) {
    UseUtf8();
    m_screen = ::newterm(nullptr, stdout, stdin);
    if (m_screen == nullptr) throw std::runtime_error("this terminal cannot show a full screen (unknown TERM?)");
    ::set_escdelay(kEscapeDelay);
    ::raw();
    ::noecho();
    ::nonl();
    ::keypad(stdscr, TRUE);
    ::nodelay(stdscr, TRUE);
    g_leave = 0;
    g_wake = &wake;
    struct sigaction action = {};
    action.sa_handler = OnLeaveSignal;
    for (const int number : kLeaveSignals) ::sigaction(number, &action, nullptr);
}

Terminal::~Terminal() {
    struct sigaction action = {};
    action.sa_handler = SIG_DFL;
    for (const int number : kLeaveSignals) ::sigaction(number, &action, nullptr);
    g_wake = nullptr;
    ::endwin();
    ::delscreen(static_cast<SCREEN*>(m_screen));
}

int Terminal::Rows() const { return getmaxy(stdscr); }

int Terminal::Columns() const { return getmaxx(stdscr); }

std::optional<Key> Terminal::NextKey() {
    if (g_leave != 0) return Key{Key::Kind::Leave, {}};
    wint_t character = 0;
    switch (::get_wch(&character)) {
        case OK:
            return KeyOfCharacter(character);
        case KEY_CODE_YES:
            return KeyOfCode(character);
        default:
            return std::nullopt;
    }
}

void Terminal::Clear() { ::werase(stdscr); }

int Terminal::Put(int row, int column, int width, const std::string& text, Style style) {
    if (row < 0 || row >= Rows() || column >= Columns()) return 0;
    width = std::min(width, Columns() - column);
    std::wstring shown;
    int taken = 0;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = CharacterLength(text, i);
        wchar_t character = WideAt(text, i, length);
        int columns = ::wcwidth(character);
        if (columns < 0) {
            character = L'?';
            columns = 1;
        }
        if (taken + columns > width) break;
        shown += character;
        taken += columns;
        i += length;
    }
    ::attr_set(AttributeOf(style), 0, nullptr);
    mvaddnwstr(row, column, shown.c_str(), static_cast<int>(shown.size()));
    for (int blank = taken; blank < width; ++blank) mvaddch(row, column + blank, ' ');
    ::attr_set(A_NORMAL, 0, nullptr);
    return taken;
}

void Terminal::Show(int cursorRow, int cursorColumn) {
    ::move(std::clamp(cursorRow, 0, std::max(0, Rows() - 1)), std::clamp(cursorColumn, 0, std::max(0, Columns() - 1)));
    ::wnoutrefresh(stdscr);
    ::doupdate();
}

}  // namespace roadlyn
