package zoren;

import static org.junit.jupiter.api.Assertions.*;

import android.graphics.Bitmap;
import android.util.ZorenConfig;
import java.util.concurrent.CyclicBarrier;
import java.util.concurrent.TimeUnit;
import org.junit.jupiter.api.RepeatedTest;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;
import zoren.net.ZorenTrafficStats;
import zoren.util.BitmapGrayUtil;
import zoren.util.BlurUtil;

/** Whichever native or framework class a virtual machine uses first: the library loads once. */
class FirstUseTest {
    private static final String[] CLASSES = {
        "zoren.util.BlurUtil", "zoren.util.BitmapGrayUtil",
        "android.util.ZorenConfig", "zoren.net.ZorenTrafficStats"
    };

    @RepeatedTest(3)
    void fourThreadsAtOnceDoNotWaitForEachOther() throws Exception {
        assertEquals("", run("all"));
    }

    @ParameterizedTest
    @CsvSource({"blur, ff0000fe", "gray, 29", "cast, ff6666cc", "config, null", "traffic, -1"})
    void everyNativeMayBeTheOnlyOne(String name, String result) throws Exception {
        assertEquals(result, run(name));
    }

    /** Returns what {@link #main} prints in a virtual machine of its own. */
    private static String run(String name) throws Exception {
        final String java = ProcessHandle.current().info().command().orElseThrow();
        final String library = "-Djava.library.path=" + System.getProperty("java.library.path");
        final String classPath = System.getProperty("java.class.path");
        final ProcessBuilder builder = new ProcessBuilder(java, "-Xcheck:jni", library, "-cp",
                classPath, FirstUseTest.class.getName(), name);
        builder.environment().put("ZOREN_DEVICE_ROOT", "/nowhere");
        final Process process = builder.redirectError(ProcessBuilder.Redirect.INHERIT).start();
        if (!process.waitFor(20, TimeUnit.SECONDS)) {
            process.destroyForcibly();
            fail("the threads wait for each other");
        }
        assertEquals(0, process.exitValue());
        return new String(process.getInputStream().readAllBytes());
    }

    /** The fresh virtual machine: one native, or a thread a class, all let go at once. */
    public static void main(String[] arguments) {
        if (!arguments[0].equals("all")) {
            System.out.print(call(arguments[0]));
            return;
        }
        final CyclicBarrier start = new CyclicBarrier(CLASSES.length);
        for (final String name : CLASSES) {
            new Thread(() -> load(name, start)).start();
        }
    }

    private static Object call(String name) {
        final int[] blue = {0xFF0000FF, 0xFF0000FF, 0xFF0000FF, 0xFF0000FF};
        final Bitmap bitmap = Bitmap.createBitmap(blue, 2, 2, Bitmap.Config.ARGB_8888);
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

    private static void load(String name, CyclicBarrier start) {
        try {
            start.await();
            Class.forName(name);
        } catch (Exception | LinkageError e) {
            e.printStackTrace();
            System.exit(1);
        }
    }
}
