// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/ValueSlider.h"

#include <QEvent>
#include <QSignalBlocker>
#include <QWheelEvent>
#include <utility>

#include "sliders/SliderValue.h"

namespace tavrin {

ValueSlider::ValueSlider(QWidget* parent, const QString& name, Hooks hooks)
    : QSlider(Qt::Horizontal, parent), m_hooks(std::move(hooks)) {
    setAccessibleName(name);
    setRange(0, kSliderSteps);
    setFocusPolicy(Qt::StrongFocus);  // not by the wheel
    connect(this, &QSlider::sliderPressed, this, [this] { m_hooks.drag(true); });
    connect(this, &QSlider::sliderReleased, this, [this] { m_hooks.drag(false); });
    connect(this, &QSlider::actionTriggered, this,
            [this](int action) { m_hooks.moved(sliderPosition(), isSliderDown() && action == SliderMove); });
}

void ValueSlider::ShowPosition(int position) {
    const QSignalBlocker silent(this);
    setValue(position);
}

// The toolkit would go on with the drag once the slider is enabled again.
void ValueSlider::changeEvent(QEvent* event) {
    QSlider::changeEvent(event);
    if (event->type() == QEvent::EnabledChange && !isEnabled() && isSliderDown()) setSliderDown(false);
}

void ValueSlider::keyPressEvent(QKeyEvent* event) {
    ShowPosition(m_hooks.stepsFrom());
    QSlider::keyPressEvent(event);
}

void ValueSlider::wheelEvent(QWheelEvent* event) {
    if (!hasFocus()) {
        event->ignore();
        return;
    }
    ShowPosition(m_hooks.stepsFrom());
    QSlider::wheelEvent(event);
}

}  // namespace tavrin
