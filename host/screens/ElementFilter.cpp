// SPDX-License-Identifier: Apache-2.0
#include "host/screens/ElementFilter.h"

#include "host/screens/EditorController.h"

#include <videooverlay/models/VideoOverlayElementListModel.h>

namespace Velmar::Host {

using VideoOverlay::VideoOverlayElementListModel;

ElementFilter::ElementFilter(EditorController &editor, QAbstractItemModel &elements,
                             QObject *parent)
    : QSortFilterProxyModel(parent)
    , m_editor(editor)
{
    setSourceModel(&elements);
    sort(0);
}

void ElementFilter::setSearch(const QString &search)
{
    if (m_search == search)
        return;
    m_search = search;
    invalidateFilter();
    Q_EMIT searchChanged();
}

QHash<int, QByteArray> ElementFilter::roleNames() const
{
    return {{NameRole, "name"},
            {KindRole, "kind"},
            {SourceIndexRole, "sourceIndex"},
            {EnabledRole, "shown"}};
}

QVariant ElementFilter::data(const QModelIndex &index, int role) const
{
    const int row = mapToSource(index).row();
    switch (role) {
    case NameRole:
        return m_editor.nameOf(row);
    case KindRole:
        return m_editor.kindOf(row);
    case SourceIndexRole:
        return row;
    case EnabledRole:
        return m_editor.isEnabledAt(row);
    default:
        return QSortFilterProxyModel::data(index, role);
    }
}

bool ElementFilter::filterAcceptsRow(int row, const QModelIndex &) const
{
    return m_search.trimmed().isEmpty()
        || m_editor.nameOf(row).contains(m_search.trimmed(), Qt::CaseInsensitive)
        || m_editor.kindOf(row).contains(m_search.trimmed(), Qt::CaseInsensitive);
}

bool ElementFilter::lessThan(const QModelIndex &left, const QModelIndex &right) const
{
    const int leftType = left.data(VideoOverlayElementListModel::TypeRole).toInt();
    const int rightType = right.data(VideoOverlayElementListModel::TypeRole).toInt();
    if (leftType != rightType)
        return leftType < rightType;
    return left.row() < right.row();
}

} // namespace Velmar::Host
