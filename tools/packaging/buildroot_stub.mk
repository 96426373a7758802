# What Buildroot brings for a package of CMake's, as far as recipes_test.py needs it: the configure,
# build and install lines of its cmake-package. BR2_EXTERNAL_TQCOMMON_PATH, O (the output), CXX and
# FLAGS come from the command line.
STAGING_DIR = $(O)/staging
TARGET_DIR = $(O)/target
BUILD_DIR = $(O)/build/tqcommon

define cmake-package
.PHONY: options configure build install
options:
	@echo '$$(TQCOMMON_VERSION) $$(TQCOMMON_SITE) $$(TQCOMMON_SITE_METHOD) $$(TQCOMMON_CONF_OPTS)'

configure:
	mkdir -p $$(BUILD_DIR)
	cd $$(BUILD_DIR) && cmake $$(TQCOMMON_SITE) -DCMAKE_SYSTEM_NAME=Linux -DCMAKE_CXX_COMPILER=$$(CXX) \
		-DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE='$$(FLAGS)' -DCMAKE_INSTALL_PREFIX=/usr \
		-DCMAKE_INSTALL_RUNSTATEDIR=/run -DCMAKE_COLOR_MAKEFILE=OFF -DBUILD_DOC=OFF -DBUILD_DOCS=OFF \
		-DBUILD_EXAMPLE=OFF -DBUILD_EXAMPLES=OFF -DBUILD_TEST=OFF -DBUILD_TESTS=OFF \
		-DBUILD_TESTING=OFF -DBUILD_SHARED_LIBS=ON $$(TQCOMMON_CONF_OPTS)

build: configure
	$$(MAKE) -C $$(BUILD_DIR)

install: build
	$$(if $$(filter YES,$$(TQCOMMON_INSTALL_STAGING)),DESTDIR=$$(STAGING_DIR) $$(MAKE) -C $$(BUILD_DIR) install/fast)
	DESTDIR=$$(TARGET_DIR) $$(MAKE) -C $$(BUILD_DIR) install/fast
endef

include $(BR2_EXTERNAL_TQCOMMON_PATH)/external.mk
