#include "RecordingHeader.h"

#include "CsvFields.h"
#include "Excerpt.h"

namespace recording {

int RecordingHeader::fieldOf(Column column) const {
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (columns[i] == column) return static_cast<int>(i);
    }
    return -1;
}

std::string parseHeader(std::string_view line, RecordingHeader& header) {
    header = RecordingHeader();
    std::string_view rest = withoutTrailingComma(trimmed(line));
    for (;;) {
        const std::size_t comma = rest.find(',');
        const std::string_view title = trimmed(rest.substr(0, comma));
        const std::optional<Column> column = columnTitled(title);
        if (header.columns.empty() && column != Column::INDEX)
            return "The first line is not a sensor recording header: it must begin with \"idx,\".";
        if (!column) return "Unknown column " + quotedExcerptOf(title) + " in the header.";
        if (header.has(*column))
            return "The column " + quotedExcerptOf(title) + " appears twice in the header.";
        header.present.set(static_cast<std::size_t>(*column));
        header.columns.push_back(*column);
        if (comma == std::string_view::npos) break;
        rest.remove_prefix(comma + 1);
    }
    if (!header.has(Column::IMU_TIME))
        return "The header has no imu_Timestamp[sec] column, by which rows are replayed.";
    return {};
}

}  // namespace recording
