include $(sort $(wildcard $(BR2_EXTERNAL_VORLIX_PATH)/*/*.mk))

# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
