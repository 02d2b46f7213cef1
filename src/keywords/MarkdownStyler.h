#pragma once

#include <QtGlobal>

namespace scrivlet {

class TextChangePipeline;
class TextStorage;
struct TextRange;

// Markdown and comment styling of every note but a code note. The text stays as typed:
// the markers are only coloured, and the text between them takes the style. All marks
// have the tag "markdown", so the pipeline can clear them before each run.
class MarkdownStyler final {
    Q_DISABLE_COPY_MOVE(MarkdownStyler)

public:
    // Plugs the styling into one editor's pipeline.
    explicit MarkdownStyler(TextChangePipeline &pipeline);

    // Styles the whole note, or only the caret's line when `lineOnly`. The line of a
    // block of code still shows as code, though its fences lie on other lines.
    static void applyMarkdown(TextStorage &storage, bool lineOnly);
    // Styles the lines of `scope` as a restyle of the whole note would.
    static void applyMarkdown(TextStorage &storage, const TextRange &scope);
};

} // namespace scrivlet
