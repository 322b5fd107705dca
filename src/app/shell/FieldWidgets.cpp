#include "shell/FieldWidgets.h"

#include "shell/Workbench.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QTimer>

#include <optional>

namespace tarvel {
namespace {

// A whole number, as the spin box's locale writes it, or nothing.
std::optional<long long> typedNumber(const QLocale& locale, const QString& text) {
    bool ok = false;
    const long long value = locale.toLongLong(text, &ok);
    return ok ? std::optional(value) : std::nullopt;
}

}  // namespace

ValueSpinBox::ValueSpinBox(QWidget* parent) : QSpinBox(parent) {
    // One change when editing ends, not one per key.
    setKeyboardTracking(false);
    connect(lineEdit(), &QLineEdit::textEdited, this, [this](const QString& text) {
        const QString typed = text.trimmed();
        const auto value = typedNumber(locale(), typed);
        markOutside(!typed.isEmpty() && (!value || *value < minimum() || *value > maximum()));
    });
}

void ValueSpinBox::markOutside(bool outside) {
    if (outside == markedOutside_) return;
    markedOutside_ = outside;
    setStyleSheet(outside ? "QSpinBox { background: #ffd0d0; }" : QString());
    setToolTip(outside ? rangeHint_ : QString());
}

void ValueSpinBox::reportAfterClick() {
    if (QGuiApplication::mouseButtons() != Qt::NoButton) {
        QTimer::singleShot(10, this, &ValueSpinBox::reportAfterClick);
        return;
    }
    emit typedOutside(false);
}

QValidator::State ValueSpinBox::validate(QString& text, int&) const {
    const QString typed = text.trimmed();
    if (typed.isEmpty() || typed == "-" || typed == "+") return QValidator::Intermediate;
    const auto value = typedNumber(locale(), typed);
    if (!value) return QValidator::Invalid;
    return *value >= minimum() && *value <= maximum() ? QValidator::Acceptable : QValidator::Intermediate;
}

bool ValueSpinBox::typedTextOutside() {
    const QString typed = lineEdit()->text().trimmed();
    long long value = 0;
    if (!typed.isEmpty()) {
        const auto number = typedNumber(locale(), typed);
        if (!number) return true;
        value = *number;
    }
    if (value < minimum() || value > maximum()) return true;
    if (typed.isEmpty()) lineEdit()->setText(textFromValue(0));
    return false;
}

void ValueSpinBox::focusOutEvent(QFocusEvent* event) {
    const bool outside = typedTextOutside();
    QSpinBox::focusOutEvent(event);
    markOutside(false);
    if (!outside) return;
    if (event->reason() == Qt::MouseFocusReason)
        QTimer::singleShot(0, this, &ValueSpinBox::reportAfterClick);
    else if (event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason)
        emit typedOutside(true);
}

void ValueSpinBox::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) {
        QSpinBox::keyPressEvent(event);
        return;
    }
    const bool outside = typedTextOutside();
    QSpinBox::keyPressEvent(event);
    markOutside(false);
    if (outside) emit typedOutside(true);
}

ModelTextValidator::ModelTextValidator(int bytes, QObject* parent) : QValidator(parent), bytes_(bytes) {}

QValidator::State ModelTextValidator::validate(QString& text, int&) const {
    return toModel(text).size() <= std::size_t(bytes_) ? Acceptable : Invalid;
}

SizedLineEdit::SizedLineEdit(const QString& sample, QWidget* parent) : QLineEdit(parent), sample_(sample) {
    setSizePolicy(QSizePolicy::Fixed, sizePolicy().verticalPolicy());
}

QSize SizedLineEdit::sizeHint() const {
    // The base hint is room for 17 'x' plus the frame and margins; keep the latter.
    const QSize base = QLineEdit::sizeHint();
    const QFontMetrics metrics(font());
    return {base.width() - 17 * metrics.horizontalAdvance(QLatin1Char('x')) + metrics.horizontalAdvance(sample_),
            base.height()};
}

}  // namespace tarvel
