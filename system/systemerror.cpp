#include "system/systemerror.h"

namespace corvalt {

Text DescribeException(const std::exception_ptr& exception, TLocale& locale) {
  if (!exception)
    return {};
  try {
    std::rethrow_exception(exception);
  } catch (const TSystemException& error) {
    const Text message = locale.SystemMessage(error.Error().Code);
    return error.Subject().empty() ? message : error.Subject() + u": " + message;
  } catch (const TProgramException& error) {
    return error.Message();
  } catch (const std::exception& error) {
    return DecodeUtf8(error.what()).value_or(Text());
  } catch (...) {
    return {};
  }
}

}  // namespace corvalt
