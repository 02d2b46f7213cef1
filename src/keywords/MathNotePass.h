#pragma once

#include "calculation/ProcessMath.h"

namespace scrivlet {

class TextChangePipeline;
struct EditorContext;
struct TextPassInput;

// The calculation of math notes, plugged into one editor's pipeline. It holds that
// editor's variables for as long as the editor lives.
class MathNotePass final {
    Q_DISABLE_COPY_MOVE(MathNotePass)

public:
    MathNotePass(TextChangePipeline &pipeline, const EditorContext &context);

    ProcessMath &processMath() { return m_processMath; }

    // What the editor's record of the last change says to the math pass.
    static MathEdit mathEdit(const TextPassInput &input);

private:
    ProcessMath m_processMath;
};

} // namespace scrivlet
