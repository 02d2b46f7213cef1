#include "keywords/MathNotePass.h"

#include "keywords/EditorContext.h"
#include "keywords/TextChangePipeline.h"

namespace scrivlet {

MathNotePass::MathNotePass(TextChangePipeline &pipeline, const EditorContext &context)
    : m_processMath(
          context.mathPreferences, context.bus, [&pipeline] { return pipeline.defaultAttributes().plain(); },
          context.conversionService)
{
    pipeline.passes().processAllMath = [this](const TextPassInput &input) {
        m_processMath.processAllMath(input.storage, mathEdit(input));
        if (input.restyledLines)
            *input.restyledLines = m_processMath.restyledLines();
    };
}

MathEdit MathNotePass::mathEdit(const TextPassInput &input)
{
    const EditRecord &edit = input.edit;
    const QString &before = edit.preModifiedContent;
    const qsizetype feed = before.indexOf(u'\n');
    const qsizetype firstLineEnd = feed < 0 ? before.size() : feed;
    MathEdit math;
    math.firstLineTouched = edit.lastModifiedRange.location <= firstLineEnd;
    math.hasLineBreak = edit.lastModifiedContent.contains(u'\n') || edit.lastModifiedContent.contains(u'\r');
    math.rangeReplaced = edit.lastModifiedRange.length > 0;
    math.editLocation = edit.lastModifiedRange.location;
    math.pasted = edit.lastModificationAction == UserActionType::paste;
    math.deleted = edit.lastModificationAction == UserActionType::delete_;
    // Opening a note or restyling it leaves no edit of its own behind: whatever the last
    // record says, the whole note is worked out anew.
    math.wholeNote = input.forceFull;
    return math;
}

} // namespace scrivlet
