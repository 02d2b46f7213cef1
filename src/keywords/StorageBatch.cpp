#include "keywords/StorageBatch.h"

#include "keywords/KeywordsLog.h"

namespace scrivlet {

void uxTextStorage(TextStorage *storage, const std::function<void(TextStorage &)> &body)
{
    if (!storage) {
        qCDebug(lcKeywords, "uxTextStorage - No text storage found exiting");
        return;
    }
    qCDebug(lcKeywords, "uxTextStorage - batch storage started after finding text storage");
    // Restores the delegate even if a pass throws, so the editor never goes deaf.
    struct Batch {
        TextStorage &storage;
        TextStorageDelegate *delegate;
        explicit Batch(TextStorage &s) : storage(s), delegate(s.delegate())
        {
            storage.setDelegate(nullptr);
            storage.beginEditing();
        }
        ~Batch()
        {
            storage.endEditing();
            storage.setDelegate(delegate);
        }
        Batch(const Batch &) = delete;
        Batch &operator=(const Batch &) = delete;
    } batch(*storage);
    body(*storage);
}

void withSelectionGuard(TextStorage &storage, const std::function<void()> &body)
{
    const TextRange selection = storage.selectedRange();
    body();
    if (storage.selectedRange() != selection)
        storage.setSelectedRange(selection);
}

} // namespace scrivlet
