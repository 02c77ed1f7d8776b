#include "core/TBToastUtils.h"

#include "core/TBConstants.h"
#include "core/TBLocalization.h"
#include "platform/NotificationCenter.h"
#include "platform/SharedInstance.h"
#include "platform/UIHost.h"

namespace tb {

TBToastUtils::TBToastUtils(UIHost& ui, NotificationCenter& notifications)
    : ui_(ui), notifications_(notifications) {
    reachableObserver_ = notifications_.addObserver(
        TBConstants::TBGlobalNotifications().networkBecameReachable, nullptr,
        [this](const Notification&) { offlineToastShown_ = false; });
}

TBToastUtils::~TBToastUtils() {
    notifications_.removeObserver(reachableObserver_);
}

TBToastUtils& TBToastUtils::shared() {
    return SharedInstance<TBToastUtils>::get();
}

void TBToastUtils::showOfflineToast() {
    if (offlineToastShown_) {
        return;
    }
    offlineToastShown_ = true;
    ui_.showToast(TBLocalization::localizedString("toast_offline"), UIHost::ToastImage::Failure);
}

void TBToastUtils::showToast(const std::string& text, bool success) {
    ui_.showToast(text, success ? UIHost::ToastImage::Success : UIHost::ToastImage::Failure);
}

}  // namespace tb
