// The turntable animation's place in the frame, and the private message of the delayed input dispatch.
#include "control/ScenePaneCtrl.h"

// Called by the frame while an animation runs; nothing starts one yet.
void CKV_ScenePaneCtrl::AnimationStep() {}

// Only a waiting press arms the timer behind kTimerMessage, and no press is delivered yet.
void CKV_ScenePaneCtrl::OnPrivateMessage(std::uint32_t /*message*/) {}
