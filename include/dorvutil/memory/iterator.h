#pragma once

namespace dorvutil {

/// Visitor of a container's elements.
template <class T>
class TIterator {
public:
    TIterator() = default;
    TIterator(const TIterator&) = default;
    TIterator& operator=(const TIterator&) = default;
    virtual ~TIterator() = default;

    /// Passes a non-null element on to OnElement.
    virtual void Visit(T* element) {
        if (element) OnElement(element);
    }
    /// Receives one element. It belongs to the container.
    virtual void OnElement(T* element) = 0;
};

}  // namespace dorvutil
