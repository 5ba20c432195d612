#include "browse/SelectionSummary.h"

#include "browse/FileInfo.h"
#include "browse/FileList.h"

namespace tessara {
namespace {

/// The number that a row's size begins with: the table is the only store of the sizes.
double BytesOf(const QString& sizeText) {
    return QStringView(sizeText).left(sizeText.indexOf(QLatin1Char(' '))).toDouble();
}

std::string TotalSize(double bytes) {
    const auto kilobytes = static_cast<float>(bytes / 1024);
    return kilobytes > 1024 ? SizeNumber(kilobytes / 1024) + " MB" : SizeNumber(kilobytes) + " KB";
}

struct Totals {
    int rows = 0;
    double bytes = 0;
    int checked = 0;
    double checkedBytes = 0;
};

Totals TotalsOf(const FileList& list) {
    Totals totals;
    totals.rows = list.RowCount();
    for (int i = 0; i < totals.rows; ++i) {
        const double bytes = BytesOf(list.ListViewFile()->topLevelItem(i)->text(FileList::kSizeColumn));
        totals.bytes += bytes;
        if (!list.IsChecked(i)) continue;
        totals.checkedBytes += bytes;
        ++totals.checked;
    }
    return totals;
}

std::string CountedFiles(int count, const char* one, const char* several, double bytes) {
    return std::to_string(count) + (count > 1 ? several : one) + " (" + TotalSize(bytes) + ")";
}

}  // namespace

SelectionSummary::SelectionSummary(Browser& browser) : browser_(browser) {
    browser_.summary = this;
}

void SelectionSummary::SelectIcoSourceIco() {
    BrowserHost& host = browser_.host;
    host.SetMenuEnabled("mEdit", 0, false);
    host.SetImageTool(6, false);

    const Totals totals = TotalsOf(*browser_.list);
    browser_.session.SelectedCount = totals.checked;
    const bool hasRows = totals.rows > 0;
    host.SetMenuEnabled("mnFile", -1, hasRows);
    if (hasRows)
        host.SetFilePanel(1, "Total " + CountedFiles(totals.rows, " File", " Files", totals.bytes));
    else
        browser_.session.ImageValid = false;
    // With nothing checked the last selection's text stays until the next rebuild.
    if (totals.checked > 0)
        host.SetFilePanel(
            2, " " + CountedFiles(totals.checked, " File Selected", " Files Selected", totals.checkedBytes));

    const bool canSelect = totals.checked < totals.rows;
    const bool anyChecked = totals.checked > 0;
    host.SetMenuEnabled("mFile", 0, canSelect);
    for (const int entry : {1, 4, 5}) host.SetMenuEnabled("mFile", entry, anyChecked);
    host.SetImageTool(3, canSelect);
    host.SetImageTool(4, anyChecked);
    host.SetImageTool(5, anyChecked);
    host.SetImageTool(12, canSelect);
}

void SelectionSummary::PrintNote() {
    const Session& session = browser_.session;
    std::string text = "Current Options : ";
    switch (session.ConvertOptions.ConvertScope) {
        case 0:
            text += "Convert current file to ";
            break;
        case 1:
            text += "Convert Selected Files to ";
            break;
        case 2:
            text += "Convert All Graphics to ";
            break;
        default:
            break;
    }
    for (const FormatRow& row : session.formats.ExportFormats)
        if (row.Enabled) text += row.Ext + ", ";
    // Meant for the last comma; without any format it takes the end of "to ".
    text.resize(text.size() - 2);
    browser_.host.SetOptionsPanel(text + " images.");
}

}  // namespace tessara
