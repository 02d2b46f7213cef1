#include "editor/ChecklistPass.h"

#include "editor/CheckTriggers.h"
#include "editor/ChecklistBuilder.h"
#include "editor/ChecklistLayout.h"
#include "editor/ChecklistStyling.h"
#include "editor/ChecklistToggle.h"
#include "keywords/NoteEditorSession.h"
#include "notes/NoteViewModel.h"

namespace scrivlet {

namespace {

// The editor's paragraphs carry no space between them (the line height makes the gap,
// on blank paper as on ruled), so rows follow one another directly.
constexpr double kParagraphSpacing = 0;

} // namespace

ChecklistPass::ChecklistPass(NoteEditorSession &session, const EditorContext &context)
    : m_session(session), m_context(context)
{
    TextPasses &passes = session.passes();
    passes.createCheckboxes = [this](const TextPassInput &input, std::optional<qsizetype> from) {
        createCheckboxes(input, from);
    };
    passes.assignRanges = [this](const TextPassInput &input, std::optional<qsizetype> from) {
        assignRanges(input, from);
    };
    passes.drawRows = [this](const TextPassInput &input, std::optional<qsizetype>) { drawRows(input); };
    passes.checkStateChanged = [this](const QString &oldLine, const QString &newLine) {
        return ChecklistBuilder::checkStateDiffers(oldLine, newLine, triggers());
    };
    passes.measureLineHeight = [this](const QString &line) {
        return ChecklistLayout::textHeight(line, m_session.storage());
    };
    m_toggled = context.bus.subscribe(QString::fromUtf16(ChecklistToggle::kNotification),
                                      [this](const QVariantMap &payload) { toggle(payload); });
}

ChecklistManager *ChecklistPass::manager() const
{
    return m_session.noteViewModel().mutableNote().checklistManager.get();
}

CheckTriggers ChecklistPass::triggers() const
{
    // Read on every run: a change of the check words in the settings applies at once.
    return CheckTriggers(m_context.keywords);
}

void ChecklistPass::createCheckboxes(const TextPassInput &input, std::optional<qsizetype> from)
{
    if (ChecklistManager *list = manager())
        ChecklistBuilder::createAllCheckboxesFromText(input.storage.string(), from, *list, triggers());
}

void ChecklistPass::assignRanges(const TextPassInput &input, std::optional<qsizetype> from)
{
    if (ChecklistManager *list = manager()) {
        ChecklistLayout::insertVerticalPositions(input.storage, input.storage.string(), from.value_or(0), *list,
                                                 kParagraphSpacing, m_context.bus);
    }
    notifyChanged();
}

void ChecklistPass::drawRows(const TextPassInput &input)
{
    ChecklistStyling::applyCheckboxStyling(&input.storage, triggers(), m_session.pipeline().defaultAttributes().list());
}

void ChecklistPass::layoutChanged()
{
    ChecklistManager *list = manager();
    if (!m_session.isList() || !list)
        return;
    TextStorage &storage = m_session.storage();
    ChecklistLayout::insertVerticalPositions(storage, storage.string(), 0, *list, kParagraphSpacing, m_context.bus);
    notifyChanged();
}

void ChecklistPass::toggle(const QVariantMap &payload)
{
    if (payload.value(QStringLiteral("editorId")).toString() != m_session.editorId())
        return;
    const auto item = payload.value(QStringLiteral("item")).value<std::shared_ptr<ChecklistItem>>();
    if (!item)
        return;
    TextStorage &storage = m_session.storage();
    const QString before = storage.string();
    const auto edit = ChecklistToggle::edit(before, item->responsibilityRange.location,
                                            payload.value(QStringLiteral("checked")).toBool(), triggers());
    if (!edit)
        return;

    // The row's text changes as if typed over, but the pipeline hears of it once, as one
    // change of the program's, which rebuilds the rows from the new text.
    TextStorageDelegate *delegate = storage.delegate();
    storage.setDelegate(nullptr);
    if (edit->replacement != storage.substring(edit->range))
        storage.replaceCharacters(edit->range, edit->replacement, storage.typingAttributes());
    storage.setDelegate(delegate);
    m_session.recordEdit(before, edit->range, edit->replacement, UserActionType::mouseDown);
    m_session.setForceProcessing(true);
    m_session.textDidChange();
    notifyChanged();
}

void ChecklistPass::notifyChanged() const
{
    if (m_changed)
        m_changed();
}

} // namespace scrivlet
