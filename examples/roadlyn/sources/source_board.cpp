#include "sources/source_board.h"

#include <algorithm>
#include <utility>

namespace roadlyn {

SourceBoard::SourceBoard(std::size_t sources, ResultOrder order, std::function<void()> wake)
    : m_sources(sources), m_order(order), m_wake(std::move(wake)) {}

void SourceBoard::ReportLoaded(SourceKind kind) {
    {
        const std::lock_guard guard(m_lock);
        if (std::find(m_loaded.begin(), m_loaded.end(), kind) != m_loaded.end()) return;
        m_loaded.push_back(kind);
    }
    m_changed.notify_all();
    m_wake();
}

void SourceBoard::ReportFailure(const std::string& reason) {
    {
        const std::lock_guard guard(m_lock);
        if (m_failure.empty()) m_failure = reason;
    }
    m_changed.notify_all();
    m_wake();
}

SourceBoard::LoadState SourceBoard::State() const {
    const std::lock_guard guard(m_lock);
    if (!m_failure.empty()) return LoadState::Failed;
    return m_loaded.size() == m_sources ? LoadState::Ready : LoadState::Loading;
}

SourceBoard::LoadState SourceBoard::WaitUntilLoaded() const {
    std::unique_lock guard(m_lock);
    m_changed.wait(guard, [this] { return !m_failure.empty() || m_loaded.size() == m_sources; });
    return m_failure.empty() ? LoadState::Ready : LoadState::Failed;
}

std::string SourceBoard::Failure() const {
    const std::lock_guard guard(m_lock);
    return m_failure;
}

void SourceBoard::SetPlaces(PlacesPointer places) {
    const std::lock_guard guard(m_lock);
    m_places = std::move(places);
}

SourceBoard::PlacesPointer SourceBoard::Places() const {
    const std::lock_guard guard(m_lock);
    return m_places;
}

void SourceBoard::SetChoices(ChoicesPointer choices) {
    const std::lock_guard guard(m_lock);
    m_choices = std::move(choices);
}

SourceBoard::ChoicesPointer SourceBoard::Choices() const {
    const std::lock_guard guard(m_lock);
    return m_choices;
}

void SourceBoard::SetSearchedText(std::string_view text) {
    const std::lock_guard guard(m_lock);
    m_searchedText = text;
}

std::string SourceBoard::SearchedText() const {
    const std::lock_guard guard(m_lock);
    return m_searchedText;
}

}  // namespace roadlyn
