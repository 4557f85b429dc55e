#include "src/gui/apps/ListModelPrograms.h"

#include "base/log/Logger.h"
#include "base/tree/XTreeArray.h"
#include "base/tree/XTypeSupporter.h"
#include "base/util/Format.h"
#include "gui/tools/XTools.h"
#include "src/gui/apps/XAppManager.h"
#include "src/gui/apps/XType_App.h"

#include <QGuiApplication>
#include <QPalette>
#include <utility>

namespace tavFinder {

using tav::log;

ListModelPrograms::ListModelPrograms(const tav::XTree& tree, const tav::XTypeSupporter* types, QObject* parent)
    : QAbstractListModel(parent), types_(types ? types : &XType_App::forEditor()) {
    from_tree(tree);
}

void ListModelPrograms::from_tree(const tav::XTree& tree) {
    beginResetModel();
    apps_.clear();
    const tav::XTreeArray& programs = tree.array(QLatin1String(XAppManager::KEY_PROGRAMS));
    apps_.reserve(size_t(programs.size()));
    for (const auto& e : programs.elements()) {
        XApp app{XApp::Empty{}};
        app.copy(*e, *types_);
        apps_.push_back(std::move(app));
    }
    endResetModel();
}

tav::XTree ListModelPrograms::to_tree() const {
    tav::XTree t;
    tav::XTreeArray& programs = t.setArray(QLatin1String(XAppManager::KEY_PROGRAMS), tav::XTreeArray(0, XType_App::appType()));
    for (int i = 0; i < int(apps_.size()); ++i) programs.append(std::make_unique<XApp>(app_at(i)));
    return t;
}

int ListModelPrograms::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : int(apps_.size()); }

QVariant ListModelPrograms::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || !isValidRow(index.row())) return QVariant();
    const int row = index.row();
    if (role == Qt::DisplayRole) return apps_[size_t(row)].get_name(false);
    if (role == Qt::BackgroundRole && !tav::XTools::isTavStyleDark()) {
        const QPalette pal = QGuiApplication::palette();
        return row % 2 == 0 ? pal.brush(QPalette::Current, QPalette::AlternateBase) : pal.brush(QPalette::Current, QPalette::Base);
    }
    return QVariant();
}

XApp ListModelPrograms::app_at(int row) const {
    if (!isValidRow(row)) {
        log(tav::LOG_TRACE, "ListModelPrograms::app_at, row:$, range problems 0...$", row, int(apps_.size()));
        return XApp(XApp::Empty{});
    }
    return apps_[size_t(row)];
}

void ListModelPrograms::set_app_at(int row, XApp app) {
    if (!isValidRow(row)) {
        // Callers pass a valid row; writing past the end is never an option.
        log(tav::LOG_TRACE, "ListModelPrograms::set_app_at, row:$, range problems 0...$", row, int(apps_.size()));
        return;
    }
    beginResetModel();
    apps_[size_t(row)] = std::move(app);
    endResetModel();
}

void ListModelPrograms::newApp(int row) {
    log(tav::LOG_TRACE, "ListModelPrograms::newApp, row:$", row);
    if (isValidRow(row)) log(tav::LOG_TRACE, "ListModelPrograms::newApp, program:$", apps_[size_t(row)].get_name(false));
    else row = 0;
    log(tav::LOG_TRACE, "ListModelPrograms::newApp, new app: '$'", mersenneTwister().randString(7));
    XApp app;
    app.show(32);
    beginResetModel();
    apps_.insert(apps_.begin() + row, std::move(app));
    endResetModel();
}

bool ListModelPrograms::nameTaken(const QString& name) const {
    for (const XApp& a : apps_)
        if (a.is_name(name)) return true;
    return false;
}

void ListModelPrograms::copyApp(int row) {
    if (!isValidRow(row)) return;
    const XApp& source = apps_[size_t(row)];
    log(tav::LOG_TRACE, "ListModelPrograms::copyApp, program:$", source.get_name(false));
    XApp copy(source);
    QString name = source.get_name(false);
    do {
        name = tav::get_string_number(name, 3);
    } while (nameTaken(name));
    copy.set_name(name);
    beginResetModel();
    apps_.insert(apps_.begin() + row, std::move(copy));
    endResetModel();
}

void ListModelPrograms::swap(int a, int b) {
    if (!isValidRow(a) || !isValidRow(b) || a == b) return;
    log(tav::LOG_TRACE, "ListModelPrograms::swap");
    beginResetModel();
    std::swap(apps_[size_t(a)], apps_[size_t(b)]);
    endResetModel();
}

void ListModelPrograms::delete_row(int row) {
    log(tav::LOG_TRACE, "ListModelPrograms::delete_row, row:$", row);
    if (!isValidRow(row)) {
        log(tav::LOG_TRACE, "ListModelPrograms::delete_row, bounds ?");
        return;
    }
    beginResetModel();
    apps_.erase(apps_.begin() + row);
    endResetModel();
}

void ListModelPrograms::delete_all() {
    log(tav::LOG_TRACE, "ListModelPrograms::delete_all");
    beginResetModel();
    apps_.clear();
    endResetModel();
}

} // namespace tavFinder
