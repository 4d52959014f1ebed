// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_ENDURANCE_CAMPAIGN_CONCURRENT_PHASE_H
#define TARNVOD_TESTS_ENDURANCE_CAMPAIGN_CONCURRENT_PHASE_H

#include "endurance/campaign/test_data.h"

namespace tarn::test {

/**
 * Several threads set cameras up, tear them down and ask, while frames arrive, subscriptions are dropped, the service
 * goes down and the retry thread never sleeps. What then happens cannot be predicted, but every frame must carry
 * its own camera's names, no callable may hear of a frame once its camera was torn down, and all must come to an end
 * with every camera recovered.
 *
 * @return how many frames arrived
 * @throw Disagreement
 */
int everythingAtOnce(const Choose& choose);

}  // namespace tarn::test

#endif
