#pragma once

#include "platform/TextAttributes.h"
#include "platform/TextRange.h"

#include <QString>
#include <functional>
#include <vector>

namespace scrivlet {

class TextStorage;

// Whoever listens to edits of a text storage: the editor that runs the pipeline.
// Passes take the delegate away while they change the text, so their own changes
// never re-enter the pipeline.
class TextStorageDelegate {
public:
    virtual ~TextStorageDelegate() = default;
    virtual void textStorageDidChange(TextStorage &storage) = 0;
};

// Attributed UTF-16 text with a selection: everything the text passes need of an
// editor. `AttributedText` holds it in memory; the app adapts its editor document.
class TextStorage {
public:
    using RunVisitor = std::function<void(const TextRange &range, const TextAttributes &attributes)>;

    virtual ~TextStorage() = default;

    virtual QString string() const = 0;
    virtual qsizetype length() const = 0;
    QString substring(const TextRange &range) const { return string().mid(range.location, range.length); }

    virtual TextRange selectedRange() const = 0;
    virtual void setSelectedRange(const TextRange &range) = 0;

    // The whole lines around `range`, each with its line feed.
    TextRange lineRange(const TextRange &range) const;

    // Attributes of the character at `index`, and the run of equal attributes around it.
    virtual TextAttributes attributesAt(qsizetype index, TextRange *effectiveRange = nullptr) const = 0;
    // Calls `visit` for each run of equal attributes within `range`, clipped to it.
    virtual void enumerateRuns(const TextRange &range, const RunVisitor &visit) const = 0;
    // Sets the fields that `attributes` has over `range`, keeping the others.
    virtual void addAttributes(const TextRange &range, const TextAttributes &attributes) = 0;
    // Replaces all attributes over `range`.
    virtual void setAttributes(const TextRange &range, const TextAttributes &attributes) = 0;
    // Removes the named fields over `range`.
    virtual void removeAttributes(const TextRange &range, unsigned fields) = 0;

    // Replaces the characters of `range` by `text`, which takes `attributes`.
    virtual void replaceCharacters(const TextRange &range, const QString &text, const TextAttributes &attributes) = 0;
    // Replaces the whole text; every character takes `attributes`.
    virtual void setText(const QString &text, const TextAttributes &attributes) = 0;

    virtual void beginEditing() = 0;
    virtual void endEditing() = 0;

    virtual TextStorageDelegate *delegate() const = 0;
    virtual void setDelegate(TextStorageDelegate *delegate) = 0;

    virtual TextAttributes typingAttributes() const = 0;
    virtual void setTypingAttributes(const TextAttributes &attributes) = 0;

    // Asks the view to redraw `range` once the current pass is over.
    virtual void invalidateDisplay(const TextRange &range) = 0;

    // Lays `text` out as this editor would, at its width with its typing attributes, and
    // returns each paragraph's height in points: one entry per piece of `text` split at
    // "\n", a trailing empty piece included.
    virtual std::vector<double> paragraphHeights(const QString &text) const = 0;
};

} // namespace scrivlet
