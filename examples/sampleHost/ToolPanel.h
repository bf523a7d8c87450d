#pragma once

#include "Corrections.h"

#include <QFrame>

#include <vector>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSlider;

/// The controls at the side of the picture. Scripts find each of them by its object name.
class ToolPanel : public QFrame
{
    Q_OBJECT

public:
    explicit ToolPanel(QWidget* parent = nullptr);

    QString title() const;
    void setTitle(const QString& title);

    Corrections corrections() const;
    void setCorrections(const Corrections& corrections);

    const std::vector<QSlider*>& sliders() const { return m_sliders; }
    QCheckBox* autoCropCheckBox() const { return m_autoCropCheckBox; }
    QCheckBox* gridCheckBox() const { return m_gridCheckBox; }
    QPushButton* saveButton() const { return m_saveButton; }
    QPushButton* exportButton() const { return m_exportButton; }
    QPushButton* resetButton() const { return m_resetButton; }
    QPushButton* closeButton() const { return m_closeButton; }

Q_SIGNALS:
    void titleChanged();
    void correctionsChanged();

    /// A slider was moved by hand, and has come to rest or not.
    void sliderMoved(bool atRest);

protected:
    void changeEvent(QEvent* event) override;

private:
    /// How a slider's value reads.
    struct Amount
    {
        double unit; ///< of a step of the slider
        int decimals;
        QString suffix;
    };

    QWidget* createSlider(const char* name, const char* icon, int greatest, const Amount& amount);
    void showAmount(size_t index);
    void retranslate();

    QLineEdit* m_titleEdit = nullptr;
    std::vector<QSlider*> m_sliders; ///< horizon, distortion, keystone
    std::vector<QLabel*> m_sliderLabels;
    std::vector<QLabel*> m_amountLabels;
    std::vector<Amount> m_amounts;
    QLabel* m_titleLabel = nullptr;
    QLabel* m_correctionsLabel = nullptr;
    QCheckBox* m_autoCropCheckBox = nullptr;
    QCheckBox* m_gridCheckBox = nullptr;
    QPushButton* m_saveButton = nullptr;
    QPushButton* m_exportButton = nullptr;
    QPushButton* m_resetButton = nullptr;
    QPushButton* m_closeButton = nullptr;
};
