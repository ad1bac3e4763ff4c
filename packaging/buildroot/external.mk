include $(sort $(wildcard $(BR2_EXTERNAL_VORLIX_PATH)/*/*.mk))
