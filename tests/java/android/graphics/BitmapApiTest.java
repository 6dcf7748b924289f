package android.graphics;

import static org.junit.jupiter.api.Assertions.*;

import android.graphics.Bitmap.Config;
import java.lang.reflect.Method;
import java.lang.reflect.Modifier;
import java.nio.ByteBuffer;
import java.nio.IntBuffer;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.TreeSet;
import org.junit.jupiter.api.Test;

/** What the stand-in offers, held against the public reference of the phone's class. */
class BitmapApiTest {
    private static final Config ARGB = Config.ARGB_8888;
    private static final Map<String, Integer> REFERENCE = Map.ofEntries( // with the API level
            Map.entry("static Bitmap createBitmap(int, int, Config)", 1),
            Map.entry("static Bitmap createBitmap(int[], int, int, Config)", 1),
            Map.entry("int getWidth()", 1), Map.entry("int getHeight()", 1),
            Map.entry("Config getConfig()", 1), Map.entry("int getRowBytes()", 1),
            Map.entry("int getByteCount()", 12), Map.entry("boolean isMutable()", 1),
            Map.entry("void recycle()", 1), Map.entry("boolean isRecycled()", 1),
            Map.entry("int getPixel(int, int)", 1), Map.entry("void setPixel(int, int, int)", 1),
            Map.entry("void getPixels(int[], int, int, int, int, int, int)", 1),
            Map.entry("void setPixels(int[], int, int, int, int, int, int)", 1),
            Map.entry("void copyPixelsToBuffer(Buffer)", 1),
            Map.entry("void copyPixelsFromBuffer(Buffer)", 3),
            Map.entry("boolean sameAs(Bitmap)", 12));

    /** A use, and what the reference says that it throws. */
    private record Use(String name, String thrown, Runnable call) {}

    @Test
    void differsInThisAlone() {
        final List<String> differences = new ArrayList<>();
        final Set<String> offered = new TreeSet<>();
        for (final Method method : Bitmap.class.getDeclaredMethods()) {
            if (!Modifier.isPublic(method.getModifiers())) {
                continue;
            }
            final String types = String.join(", ", Arrays.stream(method.getParameterTypes())
                    .map(Class::getSimpleName).toList());
            offered.add((Modifier.isStatic(method.getModifiers()) ? "static " : "")
                    + method.getReturnType().getSimpleName() + " " + method.getName()
                    + "(" + types + ")");
        }
        final Set<String> there = new TreeSet<>(REFERENCE.keySet());
        there.removeIf(method -> REFERENCE.get(method) > 28);
        assertEquals(there, offered);

        final int[] two = new int[2];
        final Bitmap odd = Bitmap.createBitmap(3, 1, Config.RGB_565); // 6 bytes
        final Bitmap fixed = Bitmap.createBitmap(two, 2, 1, ARGB);
        final Bitmap gone = Bitmap.createBitmap(2, 2, ARGB);
        gone.recycle();
        final Use[] uses = {
            new Use("no width", "IllegalArgument", () -> Bitmap.createBitmap(0, 1, ARGB)),
            new Use("graphic", "IllegalArgument", () -> Bitmap.createBitmap(1, 1, Config.HARDWARE)),
            new Use("RGBA_F16", "", () -> Bitmap.createBitmap(1, 1, Config.RGBA_F16)),
            new Use("few colours", "IllegalArgument", () -> Bitmap.createBitmap(two, 3, 1, ARGB)),
            new Use("getPixel outside", "IllegalArgument", () -> fixed.getPixel(2, 0)),
            new Use("getPixel recycled", "IllegalState", () -> gone.getPixel(0, 0)),
            new Use("setPixel outside", "IllegalArgument", () -> odd.setPixel(0, -1, 0)),
            new Use("setPixel immutable", "IllegalState", () -> fixed.setPixel(0, 0, 0)),
            new Use("outside", "IllegalArgument", () -> fixed.getPixels(two, 0, 2, 1, 0, 2, 1)),
            new Use("short", "ArrayIndexOutOfBounds", () -> fixed.getPixels(two, 1, 2, 0, 0, 2, 1)),
            new Use("immutable", "IllegalState", () -> fixed.setPixels(two, 0, 2, 0, 0, 2, 1)),
            new Use("to 5 bytes", "Runtime", () -> odd.copyPixelsToBuffer(ByteBuffer.allocate(5))),
            new Use("from 2 ints", "", () -> odd.copyPixelsFromBuffer(IntBuffer.allocate(2))),
        };
        for (final Use use : uses) {
            String thrown = "";
            try {
                use.call.run();
            } catch (RuntimeException refusal) {
                thrown = refusal.getClass().getSimpleName().replace("Exception", "");
            }
            if (!thrown.equals(use.thrown)) {
                differences.add(use.name + ": '" + thrown + "' for '" + use.thrown + "'");
            }
        }
        System.out.println("[   DEVICE ] Bitmap: " + offered.size() + " methods as in the public"
                + " reference, and differently " + differences);
        assertEquals(List.of(
                "RGBA_F16: 'UnsupportedOperation' for ''", // no half floats are stored here
                "few colours: 'ArrayIndexOutOfBounds' for 'IllegalArgument'", // a phone's, too
                "from 2 ints: 'Runtime' for ''"), // nothing copies a part of an element
                differences);
    }
}
