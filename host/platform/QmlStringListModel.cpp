// SPDX-License-Identifier: Apache-2.0
#include "platform/shared/QmlStringListModel.h"

namespace Velmar::Shared {

QmlStringListModel::QmlStringListModel(QObject *parent)
    : QAbstractListModel(parent)
{
}

QmlStringListModel::~QmlStringListModel() = default;

QStringList QmlStringListModel::stringList() const
{
    return m_texts;
}

void QmlStringListModel::setStringList(const QStringList &texts)
{
    if (m_texts == texts)
        return;
    beginResetModel();
    m_texts = texts;
    endResetModel();
    Q_EMIT stringListChanged();
}

int QmlStringListModel::maxLineNumber() const
{
    return m_maxLineNumber;
}

void QmlStringListModel::setMaxLineNumber(int lines)
{
    if (m_maxLineNumber == lines)
        return;
    m_maxLineNumber = lines;
    Q_EMIT maxLineNumberChanged();
}

int QmlStringListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_texts.size();
}

QVariant QmlStringListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || !hasIndex(index.row(), index.column()))
        return {};
    const bool isText = role == TextRole || role == Qt::DisplayRole || role == Qt::EditRole;
    return isText ? QVariant(m_texts.at(index.row())) : QVariant();
}

bool QmlStringListModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!index.isValid() || !hasIndex(index.row(), index.column()))
        return false;
    if (role != TextRole && role != Qt::EditRole)
        return false;
    const QString text = value.toString();
    if (m_texts.at(index.row()) == text)
        return true;
    m_texts.replace(index.row(), text);
    Q_EMIT dataChanged(index, index);
    Q_EMIT stringListChanged();
    return true;
}

QHash<int, QByteArray> QmlStringListModel::roleNames() const
{
    auto names = QAbstractListModel::roleNames();
    names.insert(TextRole, "text");
    return names;
}

bool QmlStringListModel::append(const QString &text)
{
    if (text.isEmpty())
        return false;
    beginInsertRows(QModelIndex(), m_texts.size(), m_texts.size());
    m_texts.append(text);
    endInsertRows();
    Q_EMIT stringListChanged();
    return true;
}

bool QmlStringListModel::remove(int row)
{
    if (row < 0 || row >= m_texts.size())
        return false;
    beginRemoveRows(QModelIndex(), row, row);
    m_texts.removeAt(row);
    endRemoveRows();
    Q_EMIT stringListChanged();
    return true;
}

} // namespace Velmar::Shared
