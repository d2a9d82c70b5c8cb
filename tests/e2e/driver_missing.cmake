# Run in place of the end-to-end tests when their driver is missing: fails with the reason.
message(FATAL_ERROR "The end-to-end tests did not run: there is no tw_driver.py in "
                    "${DRIVER_DIR}. Set TARNWICK_DRIVER_DIR to the driver's folder, or "
                    "configure with -DTARNWICK_E2E_TESTS=OFF to leave them out.")
