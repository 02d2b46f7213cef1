#pragma once

#include "notes/Note.h"

#include <functional>
#include <memory>
#include <vector>

namespace scrivlet {

// The observable holder of one note: a view keeps the holder, and the list around
// it may change without the view noticing.
class NoteViewModel {
public:
    using Observer = std::function<void(const Note &)>;

    explicit NoteViewModel(Note note) : m_id(note.id), m_note(std::move(note)) {}

    const QUuid &id() const { return m_id; }
    const Note &note() const { return m_note; }
    Note &mutableNote() { return m_note; }
    void setNote(Note note)
    {
        m_note = std::move(note);
        for (const auto &observer : m_observers)
            observer(m_note);
    }
    void observe(Observer observer) { m_observers.push_back(std::move(observer)); }

private:
    const QUuid m_id;
    Note m_note;
    std::vector<Observer> m_observers;
};

using NoteViewModelList = std::vector<std::shared_ptr<NoteViewModel>>;

} // namespace scrivlet
