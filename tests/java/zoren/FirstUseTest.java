package zoren;

import static org.junit.jupiter.api.Assertions.*;

import android.graphics.Bitmap;
import android.util.ZorenConfig;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.concurrent.*;
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
        final List<String> command = new ArrayList<>(List.of(
                ProcessHandle.current().info().command().orElseThrow(), "-Xcheck:jni",
                "-Djava.library.path=" + System.getProperty("java.library.path"), "-cp",
                System.getProperty("java.class.path"), FirstUseTest.class.getName()));
        command.addAll(Arrays.asList(names.split(" ")));
        final ProcessBuilder builder = new ProcessBuilder(command);
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
    public static void main(String[] names) throws Exception {
        final CyclicBarrier start = new CyclicBarrier(names.length);
        final ExecutorService pool = Executors.newFixedThreadPool(names.length);
        final List<Callable<Object>> calls = new ArrayList<>();
        for (final String name : names) {
            calls.add(() -> call(name, start));
        }
        final List<Future<Object>> results = pool.invokeAll(calls);
        pool.shutdown();
        for (final Future<Object> result : results) {
            System.out.print(result.get() + " ");
        }
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
