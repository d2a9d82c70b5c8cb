#pragma once

#include "products/priceladder.h"

#include <QDialog>

#include <vector>

class QLabel;
class QModelIndex;
class QPushButton;
class QTableWidget;

namespace tarnwick {

/// "Check Price Points": every product whose price points make no sense (GrdProblems: part
/// number, what is wrong). Choosing a row (double-click or Enter) asks for that product to be
/// shown; the window stays open, so the user can go through the list.
class FrmCheckPrices : public QDialog
{
    Q_OBJECT

public:
    static constexpr QLatin1String Caption { "Check Price Points" };
    static constexpr QLatin1String NoProblemsText {
        "The price points of every product make sense."
    };

    explicit FrmCheckPrices(QWidget *parent = nullptr);

    /// Shows the products of problems (from PriceLadder::checkCatalogue).
    void setProblems(const std::vector<ProductLadderProblems> &problems);
    const std::vector<ProductLadderProblems> &problems() const { return m_problems; }

Q_SIGNALS:
    /// The user chose the product of catalogue row row with part number partNumber.
    void productChosen(int row, const QString &partNumber);

private Q_SLOTS:
    void GrdProblems_DblClick(const QModelIndex &index);

protected:
    void showEvent(QShowEvent *event) override;

private:
    /// Rows as tall as their wrapped reasons at the width the reasons have now.
    void fitRows();

    QLabel *m_label = nullptr;
    QTableWidget *m_grid = nullptr;
    QPushButton *m_close = nullptr;
    std::vector<ProductLadderProblems> m_problems;
};

} // namespace tarnwick
