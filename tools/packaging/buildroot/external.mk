include $(sort $(wildcard $(BR2_EXTERNAL_TQCOMMON_PATH)/package/*/*.mk))
