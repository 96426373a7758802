################################################################################
#
# tqcommon
#
################################################################################

TQCOMMON_VERSION = 1.0.0
TQCOMMON_SITE = $(realpath $(BR2_EXTERNAL_TQCOMMON_PATH)/../../..)
TQCOMMON_SITE_METHOD = local
TQCOMMON_LICENSE = PROPRIETARY
TQCOMMON_LICENSE_FILES = debian/copyright
TQCOMMON_REDISTRIBUTE = NO
TQCOMMON_INSTALL_STAGING = YES
TQCOMMON_CONF_OPTS = -DTQ_BUILD_TESTS=OFF -DTQ_BUILD_EXAMPLES=OFF

ifeq ($(BR2_PACKAGE_TQCOMMON_COMFORT),y)
TQCOMMON_CONF_OPTS += -DTQ_BUILD_COMFORT=ON
else
TQCOMMON_CONF_OPTS += -DTQ_BUILD_COMFORT=OFF
endif

ifeq ($(BR2_PACKAGE_TQCOMMON_TOOLS),y)
TQCOMMON_CONF_OPTS += -DTQ_BUILD_TOOLS=ON
else
TQCOMMON_CONF_OPTS += -DTQ_BUILD_TOOLS=OFF
endif

$(eval $(cmake-package))
