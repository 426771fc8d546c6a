#include "search_screen.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <optional>
#include <stdexcept>

#include "country_names.h"
#include "search_report.h"
#include "terminal.h"
#include "text_fold.h"

namespace roadlyn {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr std::size_t kMaxTypedBytes = 200;
constexpr std::size_t kMaxLines = 100;
// The sources announce their results one after the other within a moment: one drawing shows them all.
constexpr milliseconds kSettle{3};
// A search that finds nothing announces nothing.
constexpr milliseconds kSilence{60};
constexpr milliseconds kProgressPeriod{50};

constexpr char kPrompt[] = "Search: ";
constexpr int kListTop = 4;
constexpr int kFooterRows = 2;

// With commas between groups of three digits.
std::string Grouped(std::int64_t number) {
    const std::string digits = std::to_string(number);
    std::string text;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (i > 0 && (digits.size() - i) % 3 == 0) text += ',';
        text += digits[i];
    }
    return text;
}

class SearchScreen {
public:
    SearchScreen(SessionOptions options, const WakePipe& wake, Terminal& terminal)
        : m_wake(wake), m_terminal(terminal), m_session(std::move(options)) {}

    void Run() {
        Search();
        while (!m_leave) {
            if (m_session.State() == HostSession::LoadState::Failed) throw std::runtime_error(m_session.Failure());
            Draw();
            if (m_wake.Wait(MillisecondsToWait()) && m_readAt > Clock::now() + kSettle)
                m_readAt = Clock::now() + kSettle;
            while (const std::optional<Key> key = m_terminal.NextKey()) {
                Handle(*key);
                if (m_leave) break;
            }
            if (m_announcements != m_session.Announcements()) {
                m_announcements = m_session.Announcements();
                m_readAt = std::min(m_readAt, Clock::now() + kSettle);
            }
            if (Clock::now() >= m_readAt) ReadResults();
        }
    }

private:
    static constexpr Clock::time_point kNever = Clock::time_point::max();

    int MillisecondsToWait() const {
        const bool loading = m_session.State() == HostSession::LoadState::Loading;
        const auto limit = loading ? kProgressPeriod : milliseconds(-1);
        if (m_readAt == kNever) return static_cast<int>(limit.count());
        const auto left = std::chrono::ceil<milliseconds>(m_readAt - Clock::now());
        const auto wait = std::max(left, milliseconds(0));
        return static_cast<int>((loading ? std::min(wait, limit) : wait).count());
    }

    void Search() {
        m_timed = m_session.State() == HostSession::LoadState::Ready;
        m_session.Type(m_text, false);
        m_selected = 0;
        m_readAt = Clock::now() + kSilence;
    }

    void ReadResults() {
        m_readAt = kNever;
        m_lines = m_session.Results(kMaxLines);
        m_searched = m_session.SearchedText();
        m_time = m_timed ? m_session.Times().last : -1;
        m_selected = std::min(m_selected, m_lines.empty() ? 0 : m_lines.size() - 1);
    }

    std::size_t PageRows() const {
        return static_cast<std::size_t>(std::max(1, m_terminal.Rows() - kListTop - kFooterRows));
    }

    void Select(std::size_t line) { m_selected = m_lines.empty() ? 0 : std::min(line, m_lines.size() - 1); }

    void Handle(const Key& key) {
        const std::size_t page = PageRows();
        switch (key.kind) {
            case Key::Kind::Character:
                AddText(key.text);
                break;
            case Key::Kind::Backspace:
                DropCharacter();
                break;
            case Key::Kind::ClearAll:
                ChangeText({});
                break;
            case Key::Kind::Up:
                Select(m_selected == 0 ? 0 : m_selected - 1);
                break;
            case Key::Kind::Down:
                Select(m_selected + 1);
                break;
            case Key::Kind::PageUp:
                Select(m_selected < page ? 0 : m_selected - page);
                break;
            case Key::Kind::PageDown:
                Select(m_selected + page);
                break;
            case Key::Kind::Home:
                Select(0);
                break;
            case Key::Kind::End:
                Select(kMaxLines);
                break;
            case Key::Kind::Enter:
                Choose();
                break;
            case Key::Kind::Leave:
                m_leave = true;
                break;
            case Key::Kind::Resize:
            case Key::Kind::Other:
                break;
        }
    }

    void ChangeText(std::string text) {
        if (text == m_text) return;
        m_text = std::move(text);
        m_message.clear();
        Search();
    }

    void AddText(const std::string& text) {
        if (m_text.size() + text.size() <= kMaxTypedBytes) ChangeText(m_text + text);
    }

    void DropCharacter() {
        std::size_t last = 0;
        for (std::size_t i = 0; i < m_text.size(); i += CharacterLength(m_text, i)) last = i;
        ChangeText(m_text.substr(0, last));
    }

    // What the list shows belongs to the text shown with it, not to keys whose results are still to come.
    void Choose() {
        if (m_readAt != kNever) ReadResults();
        if (m_lines.empty()) return;
        const Choice choice = m_lines[m_selected].choice;
        m_message = Describe(choice);
        try {
            m_session.Remember(choice);
            m_readAt = Clock::now() + kSilence;
        } catch (const std::exception& error) {
            m_message.append("   not remembered: ").append(error.what());
        }
    }

    static std::string Describe(const Choice& choice) {
        std::string text = choice.name;
        if (!choice.admin1.empty()) text += ", " + choice.admin1;
        if (choice.kind == kCountrySource) return text + "   country";
        if (!choice.country.empty()) text += ", " + std::string(CountryName(choice.country));
        text += "   at " + FormatPosition(choice);
        if (choice.population > 0) text += "   population " + Grouped(choice.population);
        return text;
    }

    void Draw() {
        const int width = m_terminal.Columns();
        m_terminal.Clear();
        int cursor = m_terminal.Put(0, 0, width, kPrompt, Terminal::Style::Bold);
        cursor += m_terminal.Put(0, cursor, width - cursor, TypedTail(width - cursor - 1), Terminal::Style::Plain);
        DrawState(width);
        if (m_searched != m_text && !m_lines.empty() && m_readAt == kNever) {
            m_terminal.Put(2, 0, width, "Nothing is called '" + m_text + "'; letters taken off: '" + m_searched + "'",
                           Terminal::Style::Warning);
        }
        DrawList(width);
        m_terminal.Put(m_terminal.Rows() - 2, 0, width, m_message, Terminal::Style::Bold);
        m_terminal.Put(m_terminal.Rows() - 1, 0, width,
                       "Up/Down choose   Enter show and remember   Ctrl-U clear   Esc leave", Terminal::Style::Dim);
        m_terminal.Show(0, cursor);
    }

    // The end of a text that is wider than the line; a character is taken to be one column wide.
    std::string TypedTail(int width) const {
        std::size_t characters = 0;
        for (std::size_t i = 0; i < m_text.size(); i += CharacterLength(m_text, i)) ++characters;
        std::size_t start = 0;
        for (; characters > static_cast<std::size_t>(std::max(1, width)); --characters) {
            start += CharacterLength(m_text, start);
        }
        return m_text.substr(start);
    }

    void DrawState(int width) {
        if (m_session.State() == HostSession::LoadState::Loading) {
            const auto percent = static_cast<int>(m_session.PercentLoaded());
            const int bar = std::clamp(width - 24, 0, 50);
            const int done = bar * percent / 100;
            std::string text("Loading places [");
            text.append(static_cast<std::size_t>(done), '#').append(static_cast<std::size_t>(bar - done), '.');
            text.append("] ").append(std::to_string(percent)).append(" %");
            m_terminal.Put(1, 0, width, text, Terminal::Style::Plain);
            return;
        }
        std::string state = std::to_string(m_lines.size()) + (m_lines.size() == 1 ? " result" : " results") + " from " +
                            Grouped(m_session.PlaceCount()) + " places";
        if (m_time >= 0) {
            char time[32];
            std::snprintf(time, sizeof(time), " in %.2f ms", m_time);
            state += time;
        }
        m_terminal.Put(1, 0, width, state, Terminal::Style::Plain);
    }

    struct Layout {
        int name, region, country, position, population;
    };

    // Names need room first: a narrow screen does without regions, a very narrow one without positions.
    static Layout LayoutFor(int width) {
        const int position = width >= 50 ? 22 : 0;
        const int population = 14;
        const int texts = std::max(10, width - position - population);
        const int name = width >= 70 ? texts * 9 / 20 : texts * 2 / 3;
        const int region = width >= 70 ? texts * 3 / 10 : 0;
        return {name, region, texts - name - region, position, population};
    }

    void DrawRow(int row, int width, const Layout& layout, const std::string (&cells)[5], Terminal::Style style) {
        m_terminal.Put(row, 0, width, "", style);
        const int widths[] = {layout.name, layout.region, layout.country, layout.position, layout.population};
        int column = 0;
        for (std::size_t i = 0; i < std::size(cells); ++i) {
            const int used = std::max(0, widths[i] - 1);
            const bool right = i + 1 == std::size(cells);
            const int indent = right ? std::max(0, used - static_cast<int>(cells[i].size())) : 0;
            m_terminal.Put(row, column + indent, used - indent, cells[i], style);
            column += widths[i];
        }
    }

    void DrawList(int width) {
        const Layout layout = LayoutFor(width);
        DrawRow(kListTop - 1, width, layout, {"Name", "Region", "Country", "Latitude, longitude", "Population"},
                Terminal::Style::Dim);
        const std::size_t page = PageRows();
        if (m_selected < m_top) m_top = m_selected;
        if (m_selected >= m_top + page) m_top = m_selected - page + 1;
        if (m_top + page > m_lines.size()) m_top = m_lines.size() > page ? m_lines.size() - page : 0;
        for (std::size_t i = m_top; i < std::min(m_lines.size(), m_top + page); ++i) {
            const Choice& choice = m_lines[i].choice;
            const bool isPlace = choice.kind == kPlaceSource;
            const bool isRecent = m_lines[i].sourceId == kRecentSource;
            std::string name(isRecent ? "* " : "");
            name += choice.name;
            DrawRow(kListTop + static_cast<int>(i - m_top), width, layout,
                    {name, choice.admin1, isPlace ? std::string(CountryName(choice.country)) : "(country)",
                     isPlace ? FormatPosition(choice) : "",
                     isPlace && choice.population > 0 ? Grouped(choice.population) : ""},
                    i == m_selected ? Terminal::Style::Selected : Terminal::Style::Plain);
        }
    }

    const WakePipe& m_wake;
    Terminal& m_terminal;
    HostSession m_session;
    std::string m_text;
    std::string m_searched;  // what m_lines were found for
    std::vector<ResultLine> m_lines;
    bool m_timed = false;  // the search did not wait for the load
    double m_time = -1;    // milliseconds that the search for m_lines took
    std::string m_message;
    std::size_t m_selected = 0;
    std::size_t m_top = 0;
    Clock::time_point m_readAt = kNever;  // when the results are to be read
    std::uint32_t m_announcements = 0;
    bool m_leave = false;
};

}  // namespace

void RunSearchScreen(SessionOptions options) {
    const WakePipe wake;
    options.wake = [&wake] { wake.Wake(); };
    Terminal terminal(wake);
    SearchScreen(std::move(options), wake, terminal).Run();
}

}  // namespace roadlyn
