// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QSortFilterProxyModel>
#include <QString>

namespace Velmar::Host {

class EditorController;

/// The element list by kind and name, for a screen that shows and searches it.
class ElementFilter : public QSortFilterProxyModel
{
    Q_OBJECT
    // clang-format off
    Q_PROPERTY(QString search READ search WRITE setSearch NOTIFY searchChanged)
    // clang-format on

public:
    enum Role {
        NameRole = Qt::UserRole + 100, ///< "name"
        KindRole,                      ///< "kind": for people
        SourceIndexRole,               ///< "sourceIndex": row of the element list
        EnabledRole,                   ///< "shown": the operator's switch
    };
    Q_ENUM(Role)

    /// @p editor is not owned and must outlive this object, like the model behind it.
    explicit ElementFilter(EditorController &editor, QAbstractItemModel &elements,
                           QObject *parent = nullptr);

    QString search() const { return m_search; }
    void setSearch(const QString &search);

    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void searchChanged();

protected:
    bool filterAcceptsRow(int row, const QModelIndex &parent) const override;
    bool lessThan(const QModelIndex &left, const QModelIndex &right) const override;

private:
    EditorController &m_editor;
    QString m_search;
};

} // namespace Velmar::Host
