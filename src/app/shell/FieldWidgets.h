#pragma once
// Small input widgets the editors share: a spin box that lets a value outside
// its range be typed so that the range message can name it, a validator that
// counts text as the model stores it, and a line edit sized for a sample text.

#include <QLineEdit>
#include <QSpinBox>
#include <QValidator>

namespace tarvel {

// The keys take any whole number. When editing ends (Return or leaving the
// field) on a number inside the range, the value changes as in any spin box;
// an empty field counts as 0; any other text leaves the value as it was and
// emits typedOutside() after editingFinished(). While text outside the range
// is being typed the field is marked at once (a red background, the range as
// its tool tip). When a mouse click moved the focus away, typedOutside(false)
// waits until the click is over, so that the click still does its work.
class ValueSpinBox : public QSpinBox {
    Q_OBJECT
public:
    explicit ValueSpinBox(QWidget* parent = nullptr);
    // The words that name the range, shown while the text lies outside it.
    void setRangeHint(const QString& hint) { rangeHint_ = hint; }
    bool markedOutside() const { return markedOutside_; }

signals:
    // `refocus`: the field should take the focus back (Return or a key moved it).
    void typedOutside(bool refocus);

protected:
    QValidator::State validate(QString& text, int& pos) const override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    // Prepares the typed text for the spin box's own handling; true when it lies outside the range.
    bool typedTextOutside();
    void markOutside(bool outside);
    // Emits typedOutside(false) once no mouse button is held any more.
    void reportAfterClick();

    QString rangeHint_;
    bool markedOutside_ = false;
};

// Accepts text whose Windows-1252 form, as the model keeps it, has at most `bytes` bytes.
class ModelTextValidator : public QValidator {
    Q_OBJECT
public:
    ModelTextValidator(int bytes, QObject* parent);
    State validate(QString& text, int& pos) const override;

private:
    int bytes_;
};

// A line edit whose preferred width holds `sample` in its current font.
class SizedLineEdit : public QLineEdit {
    Q_OBJECT
public:
    SizedLineEdit(const QString& sample, QWidget* parent);
    QSize sizeHint() const override;

private:
    QString sample_;
};

}  // namespace tarvel
