#pragma once
// The rows of the results table: the hit files of a content search (hits mode)
// or the plain files of a file-only search (basic mode). Columns: name, size,
// date, hits, folder. Rows are rendered from the vectors on demand; the
// standard model only carries the row count and the header texts.
#include "src/find/FileResult.h"

#include <QFileInfo>
#include <QStandardItemModel>
#include <cstdint>
#include <vector>

namespace tavFinder {

class FileResultModel : public QStandardItemModel {
    Q_OBJECT
public:
    enum Column { COL_NAME = 0, COL_SIZE = 1, COL_DATE = 2, COL_HITS = 3, COL_PATH = 4, COLUMNS = 5 };

    explicit FileResultModel(QObject* parent = nullptr);

    // Take the vector over (the caller's vector is left empty).
    void setFileResults(std::vector<FileResult>&& ar);
    void setFiles(std::vector<QFileInfo>&& ar);
    // Results that arrive while a search runs: added in the order of the given
    // sort (column < 0: at the end), selections and the current row following
    // their results. The batch is left empty.
    void addFileResults(std::vector<FileResult>& batch, int column, bool ascending);
    bool isBasicMode() const { return basicMode; }

    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant data_simple(const QModelIndex& index, int role) const;

    // Sorts the vector of the current mode; views are not told (call refreshAll()).
    void sort(int column, bool ascending);
    // A view's sort request goes to the same place and refreshes.
    void sort(int column, Qt::SortOrder order) override;
    void refreshAll();

    // Hits mode only; any other request gets a shared empty result.
    FileResult& fileResultFromRow(int row);
    // Either mode; an empty QFileInfo for a row outside the model.
    QFileInfo fromRow(int row) const;
    // Total hit count (hits mode only).
    uint64_t hits() const;

    const std::vector<FileResult>& fileResults() const { return arFileResults; }
    const std::vector<QFileInfo>& files() const { return arFiles; }

private:
    QVariant commonRole(const QModelIndex& index, int role, const QFileInfo& fi) const;
    static QString columnText(const QFileInfo& fi, int column);

    bool basicMode = false;
    std::vector<QFileInfo> arFiles;
    std::vector<FileResult> arFileResults;
};

} // namespace tavFinder
