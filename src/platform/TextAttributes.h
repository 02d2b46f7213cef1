#pragma once

#include "platform/CustomAttribute.h"

#include <QString>
#include <optional>

namespace scrivlet {

struct FontSpec {
    QString family;
    double pointSize = 0;
    bool bold = false;
    bool italic = false;

    friend bool operator==(const FontSpec &, const FontSpec &) = default;
};

struct ParagraphSpec {
    double lineHeightMultiple = 1.2;
    double firstLineHeadIndent = 0;
    double headIndent = 0;
    // A left tab stop at the hanging indent of checklist rows; 0 means none.
    double tabStop = 0;

    friend bool operator==(const ParagraphSpec &, const ParagraphSpec &) = default;
};

// The attributes of one run of note text. Like the attribute dictionary of a rich
// text system, each field is independent: adding attributes sets the given fields
// and leaves the others; an unset field means "not present on this run".
struct TextAttributes {
    enum Field : unsigned {
        Font = 1u << 0,
        Foreground = 1u << 1,
        Background = 1u << 2,
        Underline = 1u << 3,
        Strikethrough = 1u << 4,
        UnderlineColor = 1u << 5,
        Paragraph = 1u << 6,
        Custom = 1u << 7,
        All = 0xffu,
    };

    std::optional<FontSpec> font;
    std::optional<QString> foreground; // a theme colour role
    std::optional<QString> background;
    std::optional<int> underlineStyle;
    std::optional<int> strikethroughStyle;
    std::optional<QString> underlineColor;
    std::optional<ParagraphSpec> paragraph;
    std::optional<CustomAttribute> custom;

    // Sets every field that `other` has.
    void merge(const TextAttributes &other);
    // Clears the fields named by the mask.
    void clear(unsigned fields);
    bool isEmpty() const;

    friend bool operator==(const TextAttributes &, const TextAttributes &) = default;
};

} // namespace scrivlet
