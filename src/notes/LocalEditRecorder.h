#pragma once

namespace scrivlet {

struct Note;

// Told of every note the user's edits write to the store, before the row changes, so
// the text as it stood on this machine can be kept for merging later.
class LocalEditRecorder {
public:
    virtual ~LocalEditRecorder() = default;
    virtual void recordLocalEdit(const Note &note) = 0;
};

} // namespace scrivlet
