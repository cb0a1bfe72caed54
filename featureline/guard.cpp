#include "featureline/guard.h"

#include "vora/arx.h"

int reportCurrentException() noexcept {
  // The texts, "occured" included, are what users and scripts of the plug-in
  // have always seen; the ";" after the newline is part of them.
  try {
    throw;
  } catch (vora_featureline_result_enum r) {
    acutPrintf(ACRX_T("\nAn error (%d) occured during the execution.\n;"), static_cast<int>(r));
    return static_cast<int>(r);
  } catch (FeaturelineError e) {
    acutPrintf(ACRX_T("\nA featureline error (%d) occured.\n;"), static_cast<int>(e));
    return VORA_FEATURELINE_FALSE;
  } catch (Acad::ErrorStatus s) {
    acutPrintf(ACRX_T("\nAn error (%s) occured during the execution.\n;"), acadErrorStatusText(s));
    return VORA_FEATURELINE_HOST_ERROR;
  } catch (...) {
    acutPrintf(ACRX_T("\nAn error occured during the execution of the command\n;"));
    return VORA_FEATURELINE_UNKNOWN_ERROR;
  }
}
