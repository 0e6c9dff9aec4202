#pragma once

#include <zucore/zucore_export.h>

#include <QIdentityProxyModel>

/**
 * @class ZuManualSubmitProxyModel
 * @brief An identity proxy that keeps a view from submitting or reverting its
 *        model by itself: edits stay staged until the application decides.
 *
 * @code #include <zucore/ZuManualSubmitProxyModel.h> @endcode
 *
 * Qt's item views call their model's submit() when the current row changes
 * and when an editor is closed with Enter, and revert() when an editor is
 * closed with Escape. Behind a proxy those calls reach the source model, so
 * one Escape would throw away every staged edit of a ZuAbstractTableModel and
 * one Enter would submit the whole batch. Put this proxy directly under the
 * view:
 *
 * @code
 * auto *manual = new ZuManualSubmitProxyModel(this);
 * manual->setSourceModel(sortFilterProxy); // or the table or tree model itself
 * view->setModel(manual);
 * connect(submitButton, &QPushButton::clicked, manual, &ZuManualSubmitProxyModel::submitAll);
 * connect(revertButton, &QPushButton::clicked, manual, &ZuManualSubmitProxyModel::revertAll);
 * @endcode
 *
 * submit() answers true and revert() does nothing, so a view's calls change
 * nothing; submitAll() and revertAll() pass the application's own decision on
 * to the source model (through any proxies in between). An editor's value is
 * still written to the model with setData() when it closes, as views do;
 * only the model's submit and revert are held back. Everything else,
 * structure, data, flags, sorting of the source, passes through unchanged, so
 * it works over flat and hierarchical models and over the library's proxies.
 *
 * Choices: the proxy's own submit() answers true, as a model without a cache
 * would; submitAll() and revertAll() are slots, so that buttons and actions
 * connect to them directly.
 */
class ZUCORE_EXPORT ZuManualSubmitProxyModel : public QIdentityProxyModel
{
    Q_OBJECT

public:
    /// An identity proxy without a source model.
    explicit ZuManualSubmitProxyModel(QObject *parent = nullptr);
    ~ZuManualSubmitProxyModel() override;

public slots:
    /// What a view calls: leaves the source alone. @return always true.
    bool submit() override;
    /// What a view calls: leaves the source alone.
    void revert() override;

    /**
     * Submits the source model (its submit()).
     * @return the source's answer; false when there is no source model.
     */
    bool submitAll();
    /// Reverts the source model (its revert()); nothing happens without a source model.
    void revertAll();
};
