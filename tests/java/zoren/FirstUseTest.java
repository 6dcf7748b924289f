package zoren;

import static org.junit.jupiter.api.Assertions.*;

import android.graphics.Bitmap;
import android.util.ZorenConfig;
import java.util.concurrent.*;
import java.util.stream.Stream;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;
import zoren.net.ZorenTrafficStats;
import zoren.util.BitmapGrayUtil;
import zoren.util.BlurUtil;

/** Whichever native or framework class a virtual machine uses first: the library loads once. */
class FirstUseTest {
    @ParameterizedTest
    @CsvSource({
        "blur, ff0000fe", "gray, 29", "cast, ff6666cc", "config, null", "traffic, -1",
        // All at once do not wait for each other, as far as three times tell.
        "blur gray config traffic, ff0000fe 29 null -1",
        "traffic config cast blur, -1 null ff6666cc ff0000fe",
        "config blur traffic gray, null ff0000fe -1 29",
    })
    void mayBeAnyOfThem(String names, String results) throws Exception {
        final ProcessBuilder builder = new ProcessBuilder(
                ProcessHandle.current().info().command().orElseThrow(), "-Xcheck:jni",
                "-Djava.library.path=" + System.getProperty("java.library.path"), "-cp",
                System.getProperty("java.class.path"), FirstUseTest.class.getName(), names);
        builder.environment().put("ZOREN_DEVICE_ROOT", "/nowhere");
        final Process process = builder.redirectError(ProcessBuilder.Redirect.INHERIT).start();
        if (!process.waitFor(20, TimeUnit.SECONDS)) {
            process.destroyForcibly();
            fail("the threads wait for each other");
        }
        assertEquals(results, new String(process.getInputStream().readAllBytes()).strip());
        assertEquals(0, process.exitValue());
    }

    /** The fresh virtual machine: a thread a native, all let go at once. */
    public static void main(String[] arguments) throws Exception {
        final String[] names = arguments[0].split(" ");
        final CyclicBarrier start = new CyclicBarrier(names.length);
        final ExecutorService pool = Executors.newFixedThreadPool(names.length);
        final Stream<Callable<Object>> calls =
                Stream.of(names).map(name -> () -> call(name, start));
        for (final Future<Object> result : pool.invokeAll(calls.toList())) {
            System.out.print(result.get() + " ");
        }
        pool.shutdown();
    }

    private static Object call(String name, CyclicBarrier start) throws Exception {
        final int[] blue = {0xFF0000FF, 0xFF0000FF, 0xFF0000FF, 0xFF0000FF};
        final Bitmap bitmap = Bitmap.createBitmap(blue, 2, 2, Bitmap.Config.ARGB_8888);
        start.await();
        return switch (name) {
            case "blur" -> {
                BlurUtil.getBlurEffect(bitmap, 0, blue[0]);
                yield Integer.toHexString(bitmap.getPixel(1, 1));
            }
            case "gray" -> BitmapGrayUtil.getBitmapGray(bitmap);
            case "cast" -> Integer.toHexString(BitmapGrayUtil.getBitmapColorCast(bitmap, 50, 80));
            case "config" -> ZorenConfig.getConfigXML();
            default -> ZorenTrafficStats.getRxBytes("lo", 0);
        };
    }
}
